#pragma once

#include <string>
#include <tcl.h>
#include <vector>

/// Holds a reference to a Tcl object.
class TclRef {
public:
    explicit TclRef(Tcl_Obj* object) : m_object(object) { Tcl_IncrRefCount(m_object); }
    ~TclRef() { Tcl_DecrRefCount(m_object); }
    TclRef(const TclRef&) = delete;
    TclRef& operator=(const TclRef&) = delete;
    Tcl_Obj* get() const { return m_object; }

private:
    Tcl_Obj* m_object;
};

/// The object's text. @throws HEXAll for one that holds a NUL character
std::string textOf(Tcl_Obj* object);
/// A new object of that text.
Tcl_Obj* makeText(const std::string& text);
Tcl_Obj* makeList(const std::vector<std::string>& texts);

/// What an error may repeat of a name that there is not: with a value stuck to it, the value is left out.
std::string cutName(const std::string& name);
