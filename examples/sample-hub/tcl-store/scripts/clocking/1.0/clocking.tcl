# Clock arithmetic.
package provide clocking 1.0

namespace eval clocking {
    namespace export divided bestDivider
}

# Frequency in MHz after division.
proc clocking::divided {frequency divider} {
    return [expr {double($frequency) / $divider}]
}

# The whole divider from 1 to most whose result is nearest to the wanted frequency.
proc clocking::bestDivider {frequency wanted {most 256}} {
    set best 1
    for {set divider 2} {$divider <= $most} {incr divider} {
        if {abs([divided $frequency $divider] - $wanted) < abs([divided $frequency $best] - $wanted)} {
            set best $divider
        }
    }
    return $best
}
