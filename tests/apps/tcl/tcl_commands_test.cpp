#include "TclCommands.h"

#include "plaz/HSCPlazParams.h"
#include "plaz/bindings/HSCPlazSwigIntf.h"
#include "scripting/task_manager.h"
#include "support/HDGUIStatus.h"
#include "support/HUTFile.h"
#include "support/HubOnDisk.h"
#include "support/MessagesTest.h"

#include <tcl.h>

namespace {

/// A command, and its result or error.
struct Row {
    const char* command;
    const char* expected; ///< an error begins with "!" and its errorCode
};

/// Two stores that share an item's name, in the process's one interpreter.
class TclCommandsTest : public MessagesTest {
protected:
    TclCommandsTest() {
        StoreOnDisk& boards = files.addStore("boards", "board", true);
        boards.item("x", "1").item("x", "2").item("a*b", "1").item("aXb", "1").item("my board", "1").item("both", "1");
        StoreOnDisk& tcl = files.addStore("tcl", "ced", false);
        tcl.item("kit", "1").item("tool", "1", {{"tcl", "kit", ""}}).item("both", "2");
        tcl.publish();
        files.ship();
        plaz_startup();
        registerPlazCommands(interp, status);
        registerPlazCommands(interp, status);
    }

    std::string eval(const std::string& command) const {
        const int code = Tcl_EvalEx(interp, command.data(), static_cast<int>(command.size()), TCL_EVAL_GLOBAL);
        const std::string result = Tcl_GetStringResult(interp);
        return code == TCL_OK ? result
                              : std::string("!") + Tcl_GetVar(interp, "errorCode", TCL_GLOBAL_ONLY) + ": " + result;
    }
    /// A row whose expectation ends in "..." tells how the result begins.
    void check(const std::vector<Row>& rows) const {
        for (const Row& row : rows) {
            std::string expected = row.expected;
            std::string result = eval(row.command);
            if (expected.size() > 3 && expected.compare(expected.size() - 3, 3, "...") == 0) {
                expected.resize(expected.size() - 3);
                result.resize(std::min(result.size(), expected.size()));
            }
            EXPECT_EQ(result, expected) << row.command;
        }
    }

    HubOnDisk files;
    Tcl_Interp* interp = hdi::tcltasks::task_manager::get_interp();
    static inline HDGUIStatus status; // outlives the interpreter
};

// Catches: a name taken for a pattern or for an option, items lost, doubled or out of order, filters that let others
// in.
TEST_F(TclCommandsTest, findsStoresAndItems) {
    check({{"plaz::get_qstores", "boards tcl"},
           {"plaz::get_qstores t* nix", "tcl"},
           {"plaz::get_qitems -store boards", "x a*b aXb {my board} boards::both"},
           {"plaz::get_qitems -store [plaz::get_qstores tcl] k* kit *t", "kit"},
           {"plaz::get_qitems -all_revisions x", "x x@1"},
           {"plaz::get_qitems both", "boards::both tcl::both"},
           {"plaz::get_qitems tcl::*o*", "tool tcl::both"},
           {"plaz::get_qitems a*b", "a*b"},
           {"plaz::get_qitems my board", "{my board}"},
           {"plaz::get_qitems -- -installed", ""},
           {"plaz::get_qitems kit -installed", "kit"},
           {"plaz::get_qitems -search tol", "tool"},
           {"plaz::get_qitems -filter {STORE == tcl && (name =~ ?it || name == \"tool\")}", "kit tool"},
           {"plaz::get_qitems -filter {!installed && revision >= 2}", "x tcl::both"},
           {"plaz::get_qitems -filter {revision < 2 && !(name =~ {*b}) && name < n}", "{my board} boards::both kit"},
           {"plaz::get_qitems -filter {dependencies =~ *kit}", "tool"},
           {"plaz::get_qitems -filter {dependencies !~ *kit && store != boards}", "kit tcl::both"},
           {"plaz::get_qitems -filter {reference_count < 10 && installed == FALSE && store == tcl}",
            "kit tool tcl::both"}});
    EXPECT_EQ(takeIds(), (Names{"17-2197", "17-2197", "17-2197", "17-2303"}));
}

// Catches: input that breaks the interpreter, changes something, or is answered by anything but a clean error.
TEST_F(TclCommandsTest, refusesWhatItCannotUse) {
    const std::string deep = "plaz::get_qitems -filter {" + std::string(100000, '(') + "}";
    const std::string longName = "plaz::install " + std::string(1000000, 'n');
    check(
        {{"plaz::install", "!TCL WRONGARGS: wrong # args: should be \"plaz::install ?-quiet? ?-reinstall? "
                           "?-discard_changes? ?-dry_run? items ...\""},
         {"plaz::get_qitems -bogus",
          "!TCL LOOKUP INDEX option -bogus: bad option \"-bogus\": must be -store, -filter, ..."},
         {"plaz::get_qitems -sort nix", "!PLAZ 17-2300..."},
         {"plaz::get_qitems -limit 0", "!PLAZ 17-2300..."},
         {"plaz::install {}", "!PLAZ 17-2205..."},
         {"plaz::install nix", "!PLAZ 17-2181..."},
         {"plaz::install both", "!PLAZ 17-2183..."},
         {"plaz::install {x nix}", "!PLAZ 17-2181..."},
         {"plaz::install x@9", "!PLAZ 17-2184..."},
         {"plaz::install ::x", "!PLAZ 17-2207..."},
         {"plaz::install [plaz::get_qstores tcl]", "!PLAZ 17-2200: \"tcl\" is a store, not an item."},
         {"plaz::refresh_catalog [plaz::get_qitems x]", "!PLAZ 17-2200..."},
         {"plaz::refresh_catalog {}", "!PLAZ 17-2205..."},
         {"plaz::uninstall x", "!PLAZ 17-2165..."},
         {"plaz::update [plaz::get_qitems x]", "!PLAZ 17-2165..."},
         {"plaz::verify x", "!PLAZ 17-2165..."},
         {"plaz::verify -quiet", "!TCL LOOKUP..."},
         {"plaz::install {[exit] $x}", "!PLAZ 17-2181..."},
         {"plaz::install \"x\\0y\"", "!PLAZ 17-2209..."},
         {"plaz::install \xc3\xa9\xf0\x9f\x98\x80", "!PLAZ 17-2181: There is no item \"\xc3\xa9\xf0\x9f\x98\x80\"..."},
         {"plaz::get_qitems -filter {name == }",
          "!PLAZ 17-2198: The filter cannot be used: at character 9, a value..."},
         {"plaz::get_qitems -filter {\xc3\xa9 == 1}",
          "!PLAZ 17-2198: The filter cannot be used: at character 1, there..."},
         {"plaz::get_qitems -filter {installed < 1}", "!PLAZ 17-2198: The filter cannot be used: at character 11..."},
         {"plaz::get_qitems -filter {name}", "!PLAZ 17-2198..."},
         {"plaz::get_qitems -filter {installed installed}", "!PLAZ 17-2198..."},
         {"plaz::get_qitems -filter {reference_count =~ 1}", "!PLAZ 17-2198..."},
         {deep.c_str(), "!PLAZ 17-2198..."},
         {longName.c_str(), "!PLAZ 17-2181..."},
         {"get_property nix x", "!PLAZ 17-2201..."},
         {"set_property NAME y x", "!PLAZ 17-2202..."},
         {"list_property {x kit}", "!PLAZ 17-2211..."},
         {"set_param nix 1", "!PLAZ 17-2203..."},
         {"plaz::get_qitems -installed", ""}});
    EXPECT_EQ(takeIds(), Names{});
}

// Catches: an object that loses its identity or keeps it beyond its item, the wrong revision removed, a failure without
// its reason, work that goes on after cancellation.
TEST_F(TclCommandsTest, actsOnObjectsAndNames) {
    check(
        {{"set old [lindex [plaz::get_qitems -all_revisions x] 1]; llength $old; string length $old", "3"},
         {"proc names steps {lmap step $steps {dict get $step name}}; names [plaz::install -dry_run tool]", "tool kit"},
         {"plaz::why_not tool; plaz::get_qitems -installed", ""},
         {"plaz::install -quiet $old [plaz::get_qitems tool]", "2"},
         {"plaz::why kit", "{You asked for tcl::tool@1, which needs tcl::kit@1.}"},
         {"names [plaz::uninstall -dry_run tool]", "tool kit"},
         {"plaz::get_qitems -sort name -limit 2 -installed", "kit tool"},
         {"plaz::get_qitems -installed", "x@1 kit tool"},
         {"plaz::get_qitems $old kit tcl::both boards::x@1", "x@1 kit tcl::both"},
         {"plaz::uninstall -quiet [list [plaz::get_qitems kit] [list [plaz::get_qitems tool]]]", "2"},
         {"plaz::install -quiet tool kit; plaz::uninstall -quiet [plaz::get_qitems -installed -store tcl]", "2"},
         {"plaz::install -quiet tool; plaz::get_qitems -installed", "x@1 kit tool"},
         {"plaz::uninstall kit",
          "!PLAZ 17-1568: \"The kit\" stays installed, because other items need it. Uninstall those first. "
          "\"tcl::kit@1\" stays until these are gone: tcl::tool@1."},
         {"plaz::install -quiet kit; plaz::uninstall kit", "1"},
         {"plaz::uninstall -quiet [plaz::get_qitems x]", "1"},
         {"plaz::install -quiet {my board}", "1"},
         {"plaz::install -quiet {x tcl::both}", "2"},
         {"plaz::uninstall -quiet [plaz::get_qitems both]", "1"},
         {"set gone [plaz::get_qitems -store tcl]; plaz::refresh_catalog -quiet tcl", "1"},
         {"plaz::install [lindex $gone 0]", "!PLAZ STALE: \"kit\" is gone..."},
         {"get_property NAME $gone", "!PLAZ STALE..."},
         {"plaz::get_qitems x $gone", "!PLAZ STALE..."},
         {"plaz::uninstall -quiet tool; plaz::get_qitems -installed", "x {my board}"},
         {"dict get [lindex [plaz::history] 0] command; plaz::undo -quiet", "2"},
         {"lmap store [plaz::refresh_catalog -dry_run tcl] {dict get $store outcome}", "up-to-date"},
         {"plaz::undo -quiet [dict get [lindex [plaz::history] 0] number]; plaz::get_qitems -installed",
          "x {my board}"}});
    const Names ids = takeIds();
    EXPECT_EQ(std::count(ids.begin(), ids.end(), "17-2239"), 1) << "what was kept for others";
    status.cancel();
    check({{"plaz::uninstall x", "!PLAZ CANCELLED..."}});
    status.setState(HDGUIStatus::running);
    check({{"plaz::get_qitems -installed", "x {my board}"}});
}

// Catches: a file that is missed or told of another revision, damage that ends a script, a user's work lost or kept
// against their will.
TEST_F(TclCommandsTest, comparesAndRepairsFiles) {
    check(
        {{"plaz::verify; plaz::repair", "0"},
         {"plaz::install -quiet x@1 x@2 tool", "3"},
         {"plaz::verify [plaz::get_qitems] tool", ""},
         {"proc at {item file} {file join [get_property LOCAL_DIRECTORY $item] $file}\n"
          "proc put {item file} {set f [open [at $item $file] w]; puts $f mine; close $f}\n"
          "put x@1 {my own}; put tool body.txt; file delete [at kit body.txt]; plaz::verify",
          "x@1 additional {my own} kit missing body.txt tool changed body.txt"},
         {"plaz::verify x kit", "x@1 additional {my own} kit missing body.txt"},
         {"plaz::verify [plaz::get_qitems x]", ""},
         {"plaz::repair -quiet -discard_changes tool; plaz::verify kit tool", "kit missing body.txt"},
         {"plaz::repair -quiet; put kit body.txt; plaz::repair -quiet kit", "1"},
         {"plaz::verify", "x@1 additional {my own}"},
         {"put x@1 body.txt; plaz::install -quiet x@1; plaz::verify x", "x@1 changed body.txt x@1 additional {my own}"},
         {"plaz::install -quiet -reinstall -discard_changes x@1; plaz::verify", ""},
         {"put kit {my own}; plaz::uninstall -quiet -discard_changes tool; plaz::get_qitems -installed", "x x@1"}});
    const Names ids = takeIds();
    EXPECT_EQ(std::count(ids.begin(), ids.end(), "17-2231"), 1) << "what was kept";
    for (const std::string known : {".trees", ".index"}) HUTFile::rmRecursive(files.area("board_store/.plaz/" + known));
    check({{"plaz::verify", "!PLAZ 17-2237..."}});
}

// Catches: values of the wrong form, a preference or parameter that is not kept or not saved without a word, secrets
// shown.
TEST_F(TclCommandsTest, readsAndSetsPropertiesAndParameters) {
    check({{"get_property name [plaz::get_qitems tool]", "tool"},
           {"get_property INSTALLED {kit tool}", "0 0"},
           {"get_property dependencies tool", "tcl::kit"},
           {"get_property item_count tcl", "3"},
           {"list_property boards *_count", "ITEM_COUNT INSTALLED_COUNT"},
           {"set_property QSTORES_PATH /a dir [current_solvan_preferences]", "1"},
           {"get_property qstores_path [current_solvan_preferences]", "/a dir"},
           {"set_property plaz.http_proxy me:secret@proxy:80 [current_solvan_preferences]", "1"},
           {"get_property plaz.http_proxy [current_solvan_preferences]", "***@proxy:80"},
           {"report_property [current_solvan_preferences] Q*", "PROPERTY      VALUE\nQSTORES_PATH  /a dir"},
           {"set_param plaz.HTTP_proxy me:secret@proxy:80", "1"},
           {"get_param plaz.http_proxy", "***@proxy:80"},
           {"reset_param plaz.http_proxy; get_param plaz.http_proxy", ""},
           {"set_param plaz.git_user.board_store me; get_param plaz.git_user.board_store", "***"},
           {"set_param plaz.gitTimeout secret", "!PLAZ 17-2204..."},
           {"regexp secret $errorInfo", "0"},
           {"set_param plaz.git_token.b=secret", "!PLAZ 17-2301: There is no parameter \"plaz.git_token.b\"..."},
           {"set_property plaz.http_proxy http://u:secret@h:2", "!PLAZ 17-2212..."},
           {"plaz::install http://u:secret@h", "!PLAZ 17-2181: There is no item \"http://***@h\"..."},
           {"list_param *.git*", "plaz.git_token.board_store plaz.git_servers.board_store"},
           {"list_param -hidden *gitT*", "plaz.gitTimeout"}});
    EXPECT_NE(readFile(files.temp.path("appdata/preferences.json")).find("/a dir"), std::string::npos);
    HUTFile::rmRecursive(files.temp.path("appdata/preferences.json"));
    files.temp.makeDir("appdata/preferences.json/in the way");
    takeIds();
    check({{"set_property QSTORES_PATH /lost [current_solvan_preferences]", "!PLAZ 17-2206..."},
           {"get_property QSTORES_PATH [current_solvan_preferences]", "/a dir"}});
    EXPECT_EQ(takeIds(), Names{"12-105"});
    HUTFile::rmRecursive(files.temp.path("appdata/preferences.json"));
    eval("set_param plaz.git_token.board_store deep; proc f secret {set_param plaz.gitTimeout $secret}; f deep");
    EXPECT_EQ(shownTrace(Tcl_GetVar(interp, "errorInfo", TCL_GLOBAL_ONLY)).find("deep"), std::string::npos);
    testing::internal::CaptureStdout();
    HSCPlazSwigIntf::setQStoresPath("/other place");
    HSCPlazSwigIntf::setHttpProxy("me:secret@proxy:80");
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "set_property QSTORES_PATH /other place [current_solvan_preferences]\nset_param plaz.http_proxy "
              "***@proxy:80\n");
    EXPECT_EQ(HSCPlazSwigIntf::getQStoresPath(), "/other place");
}

} // namespace
