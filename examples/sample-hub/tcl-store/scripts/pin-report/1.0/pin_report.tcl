# Prints the pins of a board as a table: tclsh pin_report.tcl PINS.CSV
set here [file dirname [file normalize [info script]]]
source -encoding utf-8 [file join $here .. csv-kit csvkit.tcl]
source -encoding utf-8 [file join $here .. text-tables texttables.tcl]

if {[llength $argv] != 1} {
    puts stderr "usage: tclsh pin_report.tcl PINS.CSV"
    exit 2
}
fconfigure stdout -encoding utf-8
puts [texttables::render [csvkit::read [lindex $argv 0]]]
