#include "scripting/native_cache_impl.h"
#include "scripting/py_native_cache_impl.h"
#include "scripting/task_manager.h"
#include "support/MessagesTest.h"

#include <cstdlib>
#include <memory>
#include <tcl.h>

namespace {

using hdi::tcltasks::task_manager;

struct Thing {};
using TclCache = hdi::tcltasks::native_cache<Thing*>;
using PyCache = hdi::pyinfra::py_native_cache<Thing*>;

int eval(const std::string& command) {
    return task_manager::eval_in_tcl_throw(command, nullptr, false);
}

std::string failureOf(const std::string& command) {
    try {
        eval(command);
    } catch (const HEXAll& failure) {
        return failure.getMsg().getId() + " " + failure.what();
    }
    return "none";
}

/// A script object that the test holds too, so that it outlives what the cache does.
std::shared_ptr<Tcl_Obj> hold(const char* text) {
    Tcl_Obj* const object = Tcl_NewStringObj(text, -1);
    Tcl_IncrRefCount(object);
    return {object, [](Tcl_Obj* held) { Tcl_DecrRefCount(held); }};
}

class ScriptCacheTest : public MessagesTest {
protected:
    ScriptCacheTest() { task_manager::get_interp(); }
};

} // namespace

// A result that is lost or misread, an error text that is changed, state of one command that leaks into the next.
TEST(TclEvaluatorTest, GivesIntegersTextsAndErrors) {
    EXPECT_EQ(eval("set x 41; incr x"), 42);
    EXPECT_EQ(eval("set y {}"), 0);
    std::string result;
    task_manager::eval_in_tcl_throw("string range a\\0\xF0\x9F\x98\x80 1 end", &result, true);
    EXPECT_EQ(result, std::string("\0\xF0\x9F\x98\x80", 5));
    EXPECT_EQ(failureOf("set z word"), "12-108 expected integer but got \"word\"");
    EXPECT_EQ(failureOf(std::string("nul\0command", 11)).substr(0, 28), "12-108 invalid command name ");
    EXPECT_EQ(eval("set x"), 42);
}

// A damaged pair of tables that goes unnoticed, or that keeps the objects after it valid; a reference that is kept.
TEST_F(ScriptCacheTest, CorruptTablesAreReportedAndTheRestIsDone) {
    Thing one, other;
    const auto lost = hold("lost"), strayed = hold("strayed"), fine = hold("fine");
    for (const auto& object : {lost, strayed, fine}) TclCache::add(&one, object.get());
    TclCache::get_t2n_cache().erase(lost.get());
    TclCache::get_t2n_cache()[strayed.get()] = &other;
    TclCache::native_destroyed(&one);
    EXPECT_EQ(messages.at(0).text, "native_cache<> corrupt");
    EXPECT_EQ(takeIds(), (Names{"12-109", "12-109"}));
    EXPECT_TRUE(TclCache::is_invalid(fine.get()) && fine->refCount == 1);
    EXPECT_FALSE(TclCache::is_invalid(strayed.get()));
    EXPECT_EQ(TclCache::get_n2t_cache().count(&one), 0U);
    EXPECT_EQ(TclCache::get_t2n_cache().size(), 1U);
}

// The same for Python, whose objects are told through what the module lends, unless the interpreter ends.
TEST_F(ScriptCacheTest, PythonObjectsAreToldThroughTheModule) {
    static std::vector<PyObject*> invalid;
    static bool isExiting = false;
    PyCache::attach({[](PyObject* object) { invalid.push_back(object); }, [] { return isExiting; }});
    char bodies[3];
    const auto script = [&](int i) { return reinterpret_cast<PyObject*>(&bodies[i]); };
    Thing one, other;
    for (const int i : {0, 1}) PyCache::add(&one, script(i));
    PyCache::add(&other, script(2));
    PyCache::get_py2n_cache().erase(script(1));
    PyCache::native_destroyed(&one);
    EXPECT_EQ(invalid, std::vector<PyObject*>{script(0)});
    EXPECT_EQ(messages.at(0).text, "py_native_cache<> corrupt");
    isExiting = true;
    PyCache::native_destroyed(&other);
    EXPECT_EQ(invalid.size() + PyCache::get_n2py_cache().size(), 2U);
    isExiting = false;
    EXPECT_FALSE(PyCache::observers()); // for good
    PyCache::attach({nullptr, nullptr});
}

// Objects of an interpreter that is being taken down, touched when the hub goes.
TEST_F(ScriptCacheTest, NothingIsToldWhileTclExits) {
    EXPECT_EXIT(
        {
            static Thing one;
            TclCache::add(&one, Tcl_NewStringObj("one", -1));
            std::atexit([] {
                TclCache::native_destroyed(&one);
                std::_Exit(TclCache::get_t2n_cache().size() == 1 && !TclCache::observers() ? 7 : 8);
            });
            Tcl_Exit(0);
        },
        testing::ExitedWithCode(7), "");
}
