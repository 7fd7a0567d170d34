// Tcl and Python over a hub of 10,000 items, each beside a bare loop that makes as many script objects.
#include <Python.h>

#include "BenchData.h"
#include "Comparison.h"
#include "TclCommands.h"
#include "Workspace.h"

#include "plaz/HSCPlazMgr.h"
#include "plaz/bindings/HSCPlazScriptCaches.h"
#include "plaz/model/HSCPlaz.h"
#include "plaz/model/HSCPlazQItem.h"
#include "plaz/model/HSCPlazQStore.h"
#include "scripting/task_manager.h"
#include "support/HDGUIStatus.h"

#include <iostream>
#include <stdexcept>
#include <tcl.h>

namespace {

using hdi::tcltasks::task_manager;
using ItemCache = hdi::tcltasks::native_cache<HSCPlazQItem*>;

constexpr std::size_t items = 10000;
constexpr int rounds = 41;
constexpr Limit twice{2};

const HSTVector<HSCPlazQItem*>& allItems() {
    return HSCPlazMgr::getInstance().getHub().getStore("store")->getItems();
}

/// A script that is compiled once, as one in a loop of a user's is.
class TclScript {
public:
    explicit TclScript(const char* text) : m_text(Tcl_NewStringObj(text, -1)) { Tcl_IncrRefCount(m_text); }
    ~TclScript() { Tcl_DecrRefCount(m_text); }
    TclScript(const TclScript&) = delete;
    TclScript& operator=(const TclScript&) = delete;

    double run() const {
        return secondsOf([this] {
            if (Tcl_EvalObjEx(task_manager::get_interp(), m_text, TCL_EVAL_GLOBAL) != TCL_OK)
                throw std::runtime_error(Tcl_GetStringResult(task_manager::get_interp()));
        });
    }

private:
    Tcl_Obj* m_text;
};

void forgetTclObjects() {
    Tcl_ResetResult(task_manager::get_interp());
    for (const auto& [object, item] : ItemCache::get_t2n_cache()) Tcl_DecrRefCount(object);
    ItemCache::get_t2n_cache().clear();
    ItemCache::get_n2t_cache().clear();
}

// What the command cannot do without: an object for each item, known to the cache, in a list.
int makeBareObjects(ClientData, Tcl_Interp* interp, int, Tcl_Obj* const*) {
    Tcl_Obj* list = Tcl_NewListObj(0, nullptr);
    for (HSCPlazQItem* item : allItems()) {
        const std::string name = item->getName();
        Tcl_Obj* object = Tcl_NewStringObj(name.data(), static_cast<int>(name.size()));
        ItemCache::add(item, object);
        Tcl_ListObjAppendElement(interp, list, object);
    }
    Tcl_SetObjResult(interp, list);
    return TCL_OK;
}

int getBareProperty(ClientData, Tcl_Interp* interp, int, Tcl_Obj* const* words) {
    const HSCPlazQItem* item = ItemCache::tables::find_native(ItemCache::get_t2n_cache(), words[2]);
    if (!item) return TCL_ERROR;
    const std::string value = item->getName();
    Tcl_SetObjResult(interp, Tcl_NewStringObj(value.data(), static_cast<int>(value.size())));
    return TCL_OK;
}

/// Measures two scripts, each with objects that are made afresh.
void tcl(benchmark::State& state, const char* ours, const char* floor) {
    const auto timed = [](const TclScript& script) {
        forgetTclObjects();
        return script.run();
    };
    const TclScript ourScript(ours), floorScript(floor);
    compare(
        state, rounds, twice, items, [&](int) { return timed(ourScript); }, [&](int) { return timed(floorScript); });
}

void tclAgain(benchmark::State& state) {
    const TclScript ours("plaz::get_qitems"), floor("bare_objects");
    const auto again = [&](int) {
        ours.run(); // the objects are there, whatever the floor has made of them
        return ours.run();
    };
    const auto first = [&](int) {
        forgetTclObjects();
        return floor.run();
    };
    compare(state, rounds, twice, items, again, first);
}

/// The least that a Python object for an item can be.
struct BareObject {
    PyObject_HEAD HSCPlazQItem* item;
};

using PyItemCache = hdi::pyinfra::py_native_cache<HSCPlazQItem*>;

void endBare(PyObject* self) {
    PyItemCache::remove(self);
    PyTypeObject* type = Py_TYPE(self);
    PyObject_Free(self);
    Py_DECREF(type);
}

template <std::string (HSCPlazQItem::*Get)() const> PyObject* getBare(PyObject* self, void*) {
    const std::string value = (reinterpret_cast<BareObject*>(self)->item->*Get)();
    return PyUnicode_FromStringAndSize(value.data(), static_cast<Py_ssize_t>(value.size()));
}

PyTypeObject* bareType() {
    static PyGetSetDef properties[] = {
        {"name", getBare<&HSCPlazQItem::getName>, nullptr, nullptr, nullptr},
        {"revision", getBare<&HSCPlazQItem::getRevision>, nullptr, nullptr, nullptr},
        {"display_name", getBare<&HSCPlazQItem::getDisplayName>, nullptr, nullptr, nullptr},
        {nullptr, nullptr, nullptr, nullptr, nullptr}};
    static PyType_Slot slots[] = {
        {Py_tp_getset, properties}, {Py_tp_dealloc, reinterpret_cast<void*>(endBare)}, {0, nullptr}};
    static PyType_Spec spec{"bare.Item", sizeof(BareObject), 0, Py_TPFLAGS_DEFAULT, slots};
    static PyTypeObject* const type = reinterpret_cast<PyTypeObject*>(PyType_FromSpec(&spec));
    return type;
}

PyObject* listBare(PyObject*, PyObject*) {
    PyObject* list = PyList_New(0);
    for (HSCPlazQItem* item : allItems()) {
        BareObject* object = PyObject_New(BareObject, bareType());
        object->item = item;
        PyItemCache::add(item, reinterpret_cast<PyObject*>(object));
        PyList_Append(list, reinterpret_cast<PyObject*>(object));
        Py_DECREF(object);
    }
    return list;
}

double callPython(const char* function) {
    PyObject* called = PyObject_GetAttrString(PyImport_AddModule("__main__"), function);
    const double seconds = secondsOf([&] { Py_XDECREF(PyObject_CallNoArgs(called)); });
    Py_DECREF(called);
    if (!PyErr_Occurred()) return seconds;
    PyErr_Print();
    throw std::runtime_error(function);
}

void python(benchmark::State& state, const char* ours, const char* floor) {
    compare(
        state, rounds, twice, items, [&](int) { return callPython(ours); }, [&](int) { return callPython(floor); });
}

void startPython() {
    static PyMethodDef bare{"bare_items", listBare, METH_NOARGS, nullptr};
    Py_InitializeEx(0);
    PyObject* function = PyCFunction_New(&bare, nullptr);
    PyObject_SetAttrString(PyImport_AddModule("__main__"), "bare_items", function);
    Py_DECREF(function);
    if (PyRun_SimpleString("import plaz\n"
                           "def ours(): plaz.items()\n"
                           "def bare(): bare_items()\n"
                           "def ours_properties():\n"
                           "    for item in plaz.items(): item.name; item.revision; item.display_name\n"
                           "def bare_properties():\n"
                           "    for item in bare_items(): item.name; item.revision; item.display_name\n") != 0)
        throw std::runtime_error("the Python module cannot be imported: is it on PYTHONPATH?");
}

int run(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 2;
    Workspace& workspace = Workspace::get();
    workspace.useDataRoot(workspace.dataRootOf(items));
    static HDGUIStatus status;
    Tcl_Interp* interp = task_manager::get_interp();
    registerPlazCommands(interp, status);
    Tcl_CreateObjCommand(interp, "bare_objects", makeBareObjects, nullptr, nullptr);
    Tcl_CreateObjCommand(interp, "bare_property", getBareProperty, nullptr, nullptr);
    startPython();
    const auto add = [](const char* name, auto... arguments) {
        benchmark::RegisterBenchmark(name, arguments...)->Iterations(1)->UseManualTime();
    };
    add("script objects, Tcl", tcl, "plaz::get_qitems", "bare_objects");
    add("script objects, Tcl, again", tclAgain);
    add("script objects, Tcl, three properties", tcl,
        "foreach item [plaz::get_qitems] {get_property NAME $item; get_property REVISION $item; "
        "get_property DISPLAY_NAME $item}",
        "foreach item [bare_objects] {bare_property NAME $item; bare_property REVISION $item; "
        "bare_property DISPLAY_NAME $item}");
    add("script objects, Python", python, "ours", "bare");
    add("script objects, Python, three properties", python, "ours_properties", "bare_properties");
    TableReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    return reporter.areAllWithinLimits() ? 0 : 1;
}

} // namespace

int main(int argc, char** argv) {
    try {
        return run(argc, argv);
    } catch (const std::exception& failure) {
        std::cerr << "script_bench: " << failure.what() << '\n';
        return 2;
    }
}
