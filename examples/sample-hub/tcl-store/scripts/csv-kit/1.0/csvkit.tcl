# Reads CSV files (UTF-8, one record a line).
package provide csvkit 1.0

source -encoding utf-8 [file join [file dirname [info script]] .. string-kit stringkit.tcl]

namespace eval csvkit {
    namespace export read
}

# The records of a file, each a list of fields; empty lines are passed over.
proc csvkit::read {file {separator ,}} {
    set channel [open $file r]
    fconfigure $channel -encoding utf-8
    set text [::read $channel]
    close $channel
    set records {}
    foreach line [split $text \n] {
        if {$line ne ""} {
            lappend records [stringkit::splitQuoted $line $separator]
        }
    }
    return $records
}
