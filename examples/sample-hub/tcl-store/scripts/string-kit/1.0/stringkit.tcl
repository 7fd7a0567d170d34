# Small procedures on strings.
package provide stringkit 1.0

namespace eval stringkit {
    namespace export padRight unquote splitQuoted
}

# The text filled with blanks up to width characters.
proc stringkit::padRight {text width} {
    return [format "%-${width}s" $text]
}

# The text without the quotes around it; doubled quotes inside become single ones.
proc stringkit::unquote {text} {
    if {[string match {"*"} $text]} {
        return [string map {{""} {"}} [string range $text 1 end-1]]
    }
    return $text
}

# Splits a line at a separator, except where it stands between quotes.
proc stringkit::splitQuoted {line separator} {
    set fields {}
    set field ""
    set quoted 0
    foreach char [split $line ""] {
        if {$char eq "\""} {
            set quoted [expr {!$quoted}]
        }
        if {$char eq $separator && !$quoted} {
            lappend fields [unquote $field]
            set field ""
        } else {
            append field $char
        }
    }
    lappend fields [unquote $field]
    return $fields
}
