// Wraps stores and items in Tcl and Python objects, destroys and reloads them, again and again, with both interpreters
// alive and holding on to what is gone. Catches: a pointer into what was destroyed, an object that is not told, tables
// and memory that grow.
//
//     script_rounds ROUNDS, with the Python module on PYTHONPATH
#include <Python.h>

#include "TclCommands.h"

#include "plaz/HSCPlazMgr.h"
#include "plaz/bindings/HSCPlazScriptCaches.h"
#include "plaz/model/HSCPlaz.h"
#include "plaz/model/HSCPlazQItem.h"
#include "plaz/model/HSCPlazQItemModel.h"
#include "plaz/model/HSCPlazQStore.h"
#include "plaz/model/HSCPlazQStoreModel.h"
#include "scripting/task_manager.h"
#include "support/HDGUIStatus.h"
#include "support/HubOnDisk.h"

#include <cstdio>
#include <cstdlib>
#include <tcl.h>

namespace {

using hdi::tcltasks::task_manager;

constexpr const char* tclRound = R"(
proc use {} {
    foreach old $::held {
        if {![catch {get_property NAME $old} text options]} {error "\"$old\" is not gone"}
        if {[lindex [dict get $options -errorcode] 1] ne "STALE"} {error $text}
    }
    set ::held [concat [plaz::get_qstores passing] [plaz::get_qitems -store passing]]
    if {[llength $::held] != 4} {error "[llength $::held] objects"}
    foreach new $::held {get_property NAME $new}
    llength [lindex $::held end]
}
set held {}
)";

constexpr const char* pythonRound = R"(
import gc, sys, plaz
held = []
def use():
    global held
    for old in held:
        try:
            old.name
        except plaz.StaleObjectError:
            repr(old)
        else:
            raise SystemExit(f"{old!r} is not gone")
    held = [plaz.store("passing"), *plaz.items(store="passing")]
    assert len(held) == 4 and held[1] is plaz.items(store="passing")[0]
    for new in held:
        new.name
def blocks():
    gc.collect()
    return sys.getallocatedblocks()
)";

/// A store that comes and goes.
class PassingStore {
public:
    explicit PassingStore(HSCPlaz& hub) : m_hub(hub) {
        m_model.setName("passing");
        for (const char* name : {"one", "two", "three"}) {
            HSCPlazQItemModel& item = *m_model.addItem(std::make_unique<HSCPlazQItemModel>());
            item.setName(name);
            item.setStoreName("passing");
            item.setRevision("1");
            item.setLatestRevision("1");
        }
        auto store = std::make_unique<HSCPlazQStore>(&m_hub);
        store->assignModel(&m_model);
        m_store = store.get();
        m_hub.addStore(store.release());
    }
    ~PassingStore() { m_hub.removeStore(m_store); }
    PassingStore(const PassingStore&) = delete;
    PassingStore& operator=(const PassingStore&) = delete;

private:
    HSCPlaz& m_hub;
    HSCPlazQStoreModel m_model;
    HSCPlazQStore* m_store;
};

void require(bool holds, const char* what) {
    if (holds) return;
    if (PyErr_Occurred()) PyErr_Print();
    std::fprintf(stderr, "script_rounds: %s\n", what);
    std::exit(1);
}

long call(const char* name) {
    PyObject* function = PyObject_GetAttrString(PyImport_AddModule("__main__"), name);
    PyObject* result = PyObject_CallNoArgs(function);
    require(result, name);
    const long number = result == Py_None ? 0 : PyLong_AsLong(result);
    Py_DECREF(result);
    Py_DECREF(function);
    return number;
}

template <typename Native> std::size_t entriesOf() {
    using InTcl = hdi::tcltasks::native_cache<Native>;
    using InPython = hdi::pyinfra::py_native_cache<Native>;
    return InTcl::get_n2t_cache().size() + InTcl::get_t2n_cache().size() + InPython::get_n2py_cache().size() +
           InPython::get_py2n_cache().size();
}

void runRounds(HSCPlaz& hub, int rounds) {
    constexpr int reloads = 100; // from the files, which takes its time
    long blocks = 0;
    for (int round = 0; round < rounds; ++round) {
        {
            const PassingStore store(hub);
            task_manager::eval_in_tcl_throw("use", nullptr, true);
            call("use");
            if (round % (rounds / reloads + 1) == 0)
                HSCPlazMgr::getInstance().loadStoreCatalog(&hub, hub.getStore("boards"), false);
            require(entriesOf<HSCPlazQItem*>() == 12 && entriesOf<HSCPlazQStore*>() == 4,
                    "the tables hold something else than the two sets of four objects");
        }
        require(entriesOf<HSCPlazQItem*>() + entriesOf<HSCPlazQStore*>() == 0, "the tables keep what is gone");
        if (round == rounds / 10) blocks = call("blocks");
    }
    // Python's own tables grow a little now and then; what is lost in each round comes to more.
    require(call("blocks") - blocks < rounds / 10, "Python's memory grows");
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 2) return 2;
    HubOnDisk files;
    files.addStore("boards", "board", true).item("aurora", "1.0").item("mesa", "1.0");
    files.ship();
    static HDGUIStatus status;
    registerPlazCommands(task_manager::get_interp(), status);
    task_manager::eval_in_tcl_throw(tclRound, nullptr, true);
    Py_InitializeEx(0);
    require(PyRun_SimpleString(pythonRound) == 0, "the Python module cannot be used");
    runRounds(HSCPlazMgr::getInstance().getHub(), std::atoi(argv[1]));
    require(Py_FinalizeEx() == 0, "Python does not end");
    Tcl_Exit(0);
}
