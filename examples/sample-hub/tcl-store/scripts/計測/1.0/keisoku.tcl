# 測定値の平均を表にする: tclsh keisoku.tcl 値...
source -encoding utf-8 [file join [file dirname [file normalize [info script]]] .. text-tables texttables.tcl]

if {[llength $argv] == 0} {
    puts stderr "usage: tclsh keisoku.tcl VALUE..."
    exit 2
}
fconfigure stdout -encoding utf-8
set sum [tcl::mathop::+ {*}$argv]
puts [texttables::render [list {項目 値} [list 個数 [llength $argv]] \
    [list 平均 [format %.3f [expr {double($sum) / [llength $argv]}]]]]]
