#pragma once

#include <pybind11/pybind11.h>

#include <string>

/// A text that a script hands in. Null characters are refused with ValueError, for the system would end the text there,
/// and so is what has no UTF-8.
struct Text {
    std::string value;
};

/// A text for scripts. Bytes that are no UTF-8 come as those of file names do in Python (os.fsdecode).
pybind11::str toPython(const std::string& text);

template <> struct pybind11::detail::type_caster<Text> {
    PYBIND11_TYPE_CASTER(Text, const_name("str"));

    bool load(handle source, bool) {
        if (!PyUnicode_Check(source.ptr())) return false;
        Py_ssize_t size = 0;
        const char* bytes = PyUnicode_AsUTF8AndSize(source.ptr(), &size);
        if (!bytes) throw error_already_set();
        value.value.assign(bytes, static_cast<std::size_t>(size));
        if (value.value.find('\0') != std::string::npos) throw value_error("embedded null character");
        return true;
    }
};
