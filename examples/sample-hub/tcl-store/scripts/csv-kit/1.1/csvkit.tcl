# Reads and writes CSV files (UTF-8, one record a line).
package provide csvkit 1.1

source -encoding utf-8 [file join [file dirname [info script]] .. string-kit stringkit.tcl]

namespace eval csvkit {
    namespace export read write
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

# Writes records to a file, with quotes around the fields that need them.
proc csvkit::write {file records {separator ,}} {
    set channel [open $file w]
    fconfigure $channel -encoding utf-8
    foreach record $records {
        set fields {}
        foreach field $record {
            if {[string first $separator $field] >= 0 || [string first "\"" $field] >= 0} {
                set field "\"[string map {{"} {""}} $field]\""
            }
            lappend fields $field
        }
        puts $channel [join $fields $separator]
    }
    close $channel
}
