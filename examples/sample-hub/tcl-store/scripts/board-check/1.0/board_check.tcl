# Looks for mistakes in a board's pin list: tclsh board_check.tcl PINS.CSV
set here [file dirname [file normalize [info script]]]
source -encoding utf-8 [file join $here .. csv-kit csvkit.tcl]

# The mistakes found in the records of a pin list, one text each.
proc findMistakes {records levels} {
    set mistakes {}
    set seen {}
    set grounded {}
    foreach record $records {
        lassign $record connector pin signal level
        set key "$connector.$pin"
        if {[dict exists $seen $key]} {
            lappend mistakes "pin $key stands twice"
        }
        dict set seen $key 1
        if {$level ni $levels} {
            lappend mistakes "pin $key has the unknown level $level"
        }
        if {$signal eq "GND"} {
            dict set grounded $connector 1
        }
    }
    foreach connector [lsort -unique [lmap record $records {lindex $record 0}]] {
        if {![dict exists $grounded $connector]} {
            lappend mistakes "connector $connector has no ground"
        }
    }
    return $mistakes
}

if {[llength $argv] != 1} {
    puts stderr "usage: tclsh board_check.tcl PINS.CSV"
    exit 2
}
fconfigure stdout -encoding utf-8
set channel [open [file join $here levels.txt]]
set levels [split [string trim [read $channel]] \n]
close $channel
set mistakes [findMistakes [lrange [csvkit::read [lindex $argv 0]] 1 end] $levels]
foreach mistake $mistakes {
    puts $mistake
}
exit [expr {[llength $mistakes] > 0}]
