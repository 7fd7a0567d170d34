# Valeur normalisée la plus proche: tclsh resistances.tcl OHMS ?E12|E24?
source -encoding utf-8 [file join [file dirname [file normalize [info script]]] .. text-tables texttables.tcl]

set series(E12) {10 12 15 18 22 27 33 39 47 56 68 82}
set series(E24) {10 11 12 13 15 16 18 20 22 24 27 30 33 36 39 43 47 51 56 62 68 75 82 91}

# The value of a series that is nearest to a resistance, by ratio.
proc nearest {ohms values} {
    set decade [expr {10.0 ** (floor(log10($ohms)) - 1)}]
    set best 0
    set bestRatio Inf
    foreach value [concat $values [expr {[lindex $values 0] * 10}]] {
        set candidate [expr {$value * $decade}]
        set ratio [expr {abs(log(double($ohms) / $candidate))}]
        if {$ratio < $bestRatio} {
            set best $candidate
            set bestRatio $ratio
        }
    }
    return $best
}

lassign $argv ohms name
if {$name eq ""} {
    set name E12
}
if {![string is double -strict $ohms] || $ohms <= 0 || ![info exists series($name)]} {
    puts stderr "usage: tclsh resistances.tcl OHMS ?E12|E24?"
    exit 2
}
fconfigure stdout -encoding utf-8
puts [texttables::render [list {série demandée normalisée} \
    [list $name "$ohms Ω" "[format %g [nearest $ohms $series($name)]] Ω"]]]
