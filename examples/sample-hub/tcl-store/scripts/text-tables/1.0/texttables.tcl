# Aligned tables of text.
package provide texttables 1.0

namespace eval texttables {
    namespace export render
}

# Lines with the rows of a table in columns of equal width; the first row is the heading.
proc texttables::render {rows} {
    set widths {}
    foreach row $rows {
        set column 0
        foreach cell $row {
            set width [string length $cell]
            if {$column >= [llength $widths]} {
                lappend widths $width
            } elseif {$width > [lindex $widths $column]} {
                lset widths $column $width
            }
            incr column
        }
    }
    set lines {}
    foreach row $rows {
        set cells {}
        foreach cell $row width [lrange $widths 0 [expr {[llength $row] - 1}]] {
            lappend cells [format "%-${width}s" $cell]
        }
        lappend lines [string trimright [join $cells "  "]]
        if {[llength $lines] == 1} {
            set rules {}
            foreach width $widths {
                lappend rules [string repeat - $width]
            }
            lappend lines [join $rules "  "]
        }
    }
    return [join $lines \n]
}
