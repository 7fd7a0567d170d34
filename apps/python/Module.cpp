#include "Actions.h"
#include "Settings.h"

#include <pybind11/stl.h>

#include <optional>
#include <utility>

namespace py = pybind11;
using namespace py::literals;

namespace {

std::vector<std::string> valuesOf(const std::vector<Text>& texts) {
    std::vector<std::string> values;
    for (const Text& text : texts) values.push_back(text.value);
    return values;
}

std::string valueOf(const OptionalText& text) {
    return text ? text->value : std::string();
}

ItemQuery::Order orderOf(const OptionalText& name) {
    const auto found = ItemQuery::orders().find(name ? name->value : "relevance");
    if (found == ItemQuery::orders().end())
        throw py::value_error("not an order: \"" + name->value + "\" (" + ItemQuery::orderNames() + ")");
    return found->second;
}

py::list listItems(const OptionalText& pattern, const OptionalText& store, const OptionalText& category,
                   const std::vector<Text>& words, bool installed, bool outdated, bool allRevisions,
                   const OptionalText& filter, const OptionalText& sort, std::optional<std::size_t> limit) {
    return findItems({valueOf(pattern), valueOf(store), valueOf(category), valuesOf(words), installed, outdated,
                      allRevisions, orderOf(sort)},
                     filter, limit);
}

py::list listItemsOf(const StoreHandle& self, const OptionalText& pattern, const OptionalText& category,
                     const std::vector<Text>& words, bool installed, bool outdated, bool allRevisions,
                     const OptionalText& filter, const OptionalText& sort, std::optional<std::size_t> limit) {
    return findItemsOf(
        self,
        {valueOf(pattern), {}, valueOf(category), valuesOf(words), installed, outdated, allRevisions, orderOf(sort)},
        filter, limit);
}

void defineQueries(py::module_& module) {
    module.def("stores", &findStores, "pattern"_a = py::none(),
               "stores(pattern=None)\n--\n\n"
               "The hub's stores, in its order: all, or those whose names fit the glob pattern.");
    module.def("store", &findStore, "name"_a,
               "store(name)\n--\n\nThe store of exactly that name.\n\n"
               "Raises NotFoundError when there is none.");
    module.def("items", &listItems, "pattern"_a = py::none(), py::kw_only(), "store"_a = py::none(),
               "category"_a = py::none(), "words"_a = py::tuple(), "installed"_a = false, "outdated"_a = false,
               "all_revisions"_a = false, "filter"_a = py::none(), "sort"_a = py::none(), "limit"_a = py::none(),
               "items(pattern=None, *, store=None, category=None, words=(), installed=False, outdated=False, "
               "all_revisions=False, filter=None, sort=None, limit=None)\n--\n\n"
               "The items that fit, store by store in catalog order; one for each item, its latest revision where that "
               "fits.\n\n"
               "pattern: glob on the name; \"STORE::NAME\" holds one on the store's name too.\n"
               "store: name of the store to look in.\n"
               "category: name of a category; those below it count as well.\n"
               "words: texts that must each occur in what describes the item, in any case; the best fitting items come "
               "first. In place of one that nothing mentions the nearest words are looked for, which is logged.\n"
               "installed, outdated: only revisions that are installed, or installed and have an update.\n"
               "all_revisions: every revision.\n"
               "filter: a condition on properties, such as 'installed && company =~ Sample*'.\n"
               "sort: 'name', 'store' or 'revision' (the highest first) in place of 'relevance'.\n"
               "limit: no more than so many items.\n\n"
               "Raises NotFoundError for an unknown store or category and Error for a wrong condition.");
    module.def("categories", &listCategories, "store"_a = py::none(),
               "categories(store=None)\n--\n\n"
               "The categories of the stores, or of the one named, as Category objects: each before those below it.");
    module.def(
        "item", &findItem, "reference"_a, "store"_a = py::none(),
        "item(reference, store=None)\n--\n\n"
        "The one item that \"ITEM\", \"ITEM@REVISION\" or \"STORE::ITEM@REVISION\" means; without a revision the "
        "latest.\n\n"
        "Raises NotFoundError for none and AmbiguousError for several.");
}

void defineActions(py::module_& module) {
    module.def("install", &install, "items"_a, py::kw_only(), "store"_a = py::none(), "quiet"_a = false,
               "reinstall"_a = false, "discard_changes"_a = false, "progress"_a = py::none(), "dry_run"_a = false,
               "install(items, *, store=None, quiet=False, reinstall=False, discard_changes=False, "
               "progress=None, dry_run=False)\n--\n\n"
               "Installs items, each with all that it needs.\n\n"
               "items: one Item or reference, or several; all are found before any is touched.\n"
               "store: name of the store in which references are looked up.\n"
               "quiet: leaves out the good news.\n"
               "reinstall: fetches the items' files again, also where they are there.\n"
               "discard_changes: does not keep what the user has changed or added in the folders of items that go.\n"
               "progress: called with a text and a percentage at each step; cancels by returning False or raising. "
               "cancel() need not wait for the next step.\n"
               "dry_run: does nothing, and returns a PlannedStep for each thing that would be done.\n\n"
               "Returns an ActionResult for each item. Raises Error when one fails, with what became of each in "
               "its results; what was done stays done.");
    module.def(
        "uninstall", &uninstall, "items"_a, py::kw_only(), "store"_a = py::none(), "quiet"_a = false,
        "discard_changes"_a = false, "progress"_a = py::none(), "dry_run"_a = false,
        "uninstall(items, *, store=None, quiet=False, discard_changes=False, progress=None, dry_run=False)\n--\n\n"
        "Removes installed items with all that nothing else needs. A reference without a revision means the "
        "one that is installed. One that others need stays; needed_by of its result tells which, and where that "
        "is a failure the text of the Error, too. Arguments and result are those of install().");
    module.def("update", &update, "items"_a, py::kw_only(), "store"_a = py::none(), "quiet"_a = false,
               "discard_changes"_a = false, "progress"_a = py::none(), "dry_run"_a = false,
               "update(items, *, store=None, quiet=False, discard_changes=False, progress=None, dry_run=False)\n--\n\n"
               "Brings installed items up to date. An Item whose revision is not installed means the installed one. "
               "Arguments and result are those of install().");
    module.def("hold", &hold, "items"_a, py::kw_only(), "store"_a = py::none(),
               "hold(items, *, store=None)\n--\n\n"
               "Keeps installed items in the revision that they are in: they are not updated, nor replaced by another "
               "one, until unhold(). Their attribute held says so.\n\n"
               "items, store: as for update().\n\n"
               "Returns an ActionResult for each item.");
    module.def("unhold", &unhold, "items"_a, py::kw_only(), "store"_a = py::none(),
               "unhold(items, *, store=None)\n--\n\n"
               "Lets items that are held change again. Arguments and result are those of hold().");
    module.def(
        "history", &readHistory,
        "history()\n--\n\nWhat was done to what is installed: a HistoryEntry for each command, the newest first.");
    module.def(
        "undo", &undo, "number"_a = py::none(), py::kw_only(), "quiet"_a = false, "discard_changes"_a = false,
        "progress"_a = py::none(), "dry_run"_a = false,
        "undo(number=None, *, quiet=False, discard_changes=False, progress=None, dry_run=False)\n--\n\n"
        "Takes back what a command has changed of what is installed.\n\n"
        "number: of its entry in the history; without one, the newest that is neither taken back nor took back "
        "another.\n"
        "The other arguments are those of install().\n\n"
        "Returns an ActionResult for each item, or with dry_run a PlannedStep for each step and nothing changed. "
        "Raises Error, with nothing changed, where later commands have "
        "changed the same items, or files are not to be had.");
    module.def("why", &findWhy, "items"_a, py::kw_only(), "store"_a = py::none(),
               "why(items, *, store=None)\n--\n\n"
               "Why installed items are there: a sentence for each reason. Raises Error for one that is not "
               "installed.");
    module.def("why_not", &findWhyNot, "item"_a, py::kw_only(), "store"_a = py::none(),
               "why_not(item, *, store=None)\n--\n\n"
               "What keeps an item from being installed; None where it is installed, or could be. Asks no remote.");
    module.def("verify", &verify, "items"_a = py::none(), py::kw_only(), "store"_a = py::none(),
               "progress"_a = py::none(),
               "verify(items=None, *, store=None, progress=None)\n--\n\n"
               "Compares the files of installed items with those of the commits that are recorded of them; changes "
               "nothing and needs no network.\n\n"
               "items: as for install(); all that is installed, or of the store, without any. A reference without a "
               "revision means every one that is installed.\n"
               "store, progress: as for install().\n\n"
               "Returns a FilesResult for each item. Damage raises nothing. Raises Error for an item that is not "
               "installed.");
    module.def("repair", &repair, "items"_a = py::none(), py::kw_only(), "store"_a = py::none(), "quiet"_a = false,
               "discard_changes"_a = false, "progress"_a = py::none(),
               "repair(items=None, *, store=None, quiet=False, discard_changes=False, progress=None)\n--\n\n"
               "Brings back files of installed items that were changed or are missing. What the user had changed is "
               "kept, and a message says where, unless it is discarded; what was added stays.\n\n"
               "items: as for verify(). The other arguments and the result are those of install().");
    module.def("refresh", &refresh, "stores"_a = py::none(), py::kw_only(), "hub"_a = false, "progress"_a = py::none(),
               "dry_run"_a = false,
               "refresh(stores=None, *, hub=False, progress=None, dry_run=False)\n--\n\n"
               "Fetches the catalogs of stores, names or Store objects; of all stores without any. Their items are new "
               "objects afterwards.\n\n"
               "hub: fetches the hub's own list of stores first; stores are new objects afterwards, too.\n"
               "dry_run: tells what would change (StoreResult.changes), and leaves in force what is.\n"
               "progress: as for install().\n\n"
               "Returns a StoreResult for each store. Raises Error when one fails.");
    module.def("cancel", &Call::cancelCurrent,
               "cancel()\n--\n\n"
               "Cancels the call that another thread, or the caller of this callback, is in: it ends soon and raises "
               "Cancelled. The one function that may be called meanwhile.\n\n"
               "Returns False when there is no such call.");
    module.def(
        "set_product", &setProduct, "name"_a, "version"_a,
        "set_product(name, version)\n--\n\n"
        "Sets the product and its version for which stores choose their catalogs; empty texts change nothing.\n\n"
        "Raises Error when the hub has started.");
}

void defineSettings(py::module_& module) {
    module.def("get_param", &getParam, "name"_a);
    module.def("set_param", &setParam, "name"_a, "value"_a);
    module.def("reset_param", &resetParam, "name"_a);
    module.def("list_params", &listParams);
    module.def("get_preference", &getPreference, "name"_a);
    module.def("set_preference", &setPreference, "name"_a, "values"_a);
    module.def("list_preferences", &listPreferences);
}

template <typename Native> std::string documented(const std::string& signatureAndText) {
    const char* cause = std::is_same_v<Native, HSCPlazQItem> ? "its store was" : "the hub's list of stores was";
    return signatureAndText + "\n\nRaises StaleObjectError once the object is gone, because " + cause + " refreshed.";
}

/// The oldest pickle protocols would write an object that cannot be read again.
template <typename Native> void refuseToPickle() {
    defineMethod<Native>("__reduce__", [](const Handle<Native>&) -> py::object {
        throw py::type_error("a store or item cannot be pickled: pickle its text, which finds it again");
    });
}

void defineStore(py::module_& module) {
    defineClass<HSCPlazQStore>(
        module, "Store",
        "A store: a repository that publishes items. Iterating over it gives one Item for each item, as items() does.");
    defineMethod<HSCPlazQStore>(
        "items", &listItemsOf, "pattern"_a = py::none(), py::kw_only(), "category"_a = py::none(),
        "words"_a = py::tuple(), "installed"_a = false, "outdated"_a = false, "all_revisions"_a = false,
        "filter"_a = py::none(), "sort"_a = py::none(), "limit"_a = py::none(),
        documented<HSCPlazQStore>(
            "items(self, pattern=None, *, category=None, words=(), installed=False, outdated=False, "
            "all_revisions=False, filter=None, sort=None, limit=None)\n--\n\n"
            "The items of this store that fit, as plaz.items() finds them.")
            .c_str());
    refuseToPickle<HSCPlazQStore>();
    defineMethod<HSCPlazQStore>("__iter__",
                                [](const StoreHandle& self) { return py::iter(findItemsOf(self, {}, {})); });
    defineMethod<HSCPlazQStore>("__len__", &countItems);
    defineMethod<HSCPlazQStore>("__bool__", [](const StoreHandle&) { return true; }); // whatever its length
    defineMethod<HSCPlazQStore>(
        "refresh",
        [](const StoreHandle& self, py::object progress) -> py::object {
            return refresh(self.toObject(), false, std::move(progress), false)[0];
        },
        "progress"_a = py::none(),
        documented<HSCPlazQStore>(
            "refresh(self, progress=None)\n--\n\n"
            "Fetches this store's catalog, as plaz.refresh() does. The store stays the same object.")
            .c_str());
    defineMethod<HSCPlazQStore>(
        "check", &checkStore,
        documented<HSCPlazQStore>(
            "check(self)\n--\n\n"
            "Asks the remote whether it has moved since the last refresh: the outcome is \"up-to-date\" or "
            "\"outdated\".\n\nRaises Error when it gives no answer.")
            .c_str());
}

std::string documentedAction(const std::string& name, const char* options) {
    return documented<HSCPlazQItem>(name + "(self, *, " + options + ")\n--\n\nDoes to this item what plaz." + name +
                                    "() does, and returns its result.");
}

/// The method of an item that does what the function of that name does to it alone.
template <typename Act> void defineAction(const char* name, Act act) {
    defineMethod<HSCPlazQItem>(
        name,
        [act](const ItemHandle& self, bool quiet, bool discardChanges, py::object progress) -> py::object {
            return act(self.toObject(), OptionalText(), quiet, discardChanges, std::move(progress))[0];
        },
        py::kw_only(), "quiet"_a = false, "discard_changes"_a = false, "progress"_a = py::none(),
        documentedAction(name, "quiet=False, discard_changes=False, progress=None").c_str());
}

void defineInstall() {
    defineMethod<HSCPlazQItem>(
        "install",
        [](const ItemHandle& self, bool quiet, bool reinstall, bool discardChanges, py::object progress) -> py::object {
            return install(self.toObject(), {}, quiet, reinstall, discardChanges, std::move(progress))[0];
        },
        py::kw_only(), "quiet"_a = false, "reinstall"_a = false, "discard_changes"_a = false, "progress"_a = py::none(),
        documentedAction("install", "quiet=False, reinstall=False, discard_changes=False, progress=None").c_str());
}

void defineVerify() {
    defineMethod<HSCPlazQItem>(
        "verify",
        [](const ItemHandle& self, py::object progress) -> py::object {
            return verify(self.toObject(), {}, std::move(progress))[0];
        },
        py::kw_only(), "progress"_a = py::none(), documentedAction("verify", "progress=None").c_str());
}

void defineHold(const char* name, py::list (*act)(const py::object&, const OptionalText&)) {
    defineMethod<HSCPlazQItem>(
        name, [act](const ItemHandle& self) -> py::object { return act(self.toObject(), {})[0]; },
        documented<HSCPlazQItem>(std::string(name) + "(self)\n--\n\nDoes to this item what plaz." + name +
                                 "() does, and returns its result.")
            .c_str());
}

void defineItem(py::module_& module) {
    defineClass<HSCPlazQItem>(module, "Item", "One revision of an item of a store's catalog.");
    refuseToPickle<HSCPlazQItem>();
    defineInstall();
    defineAction("uninstall", [](auto&&... args) { return uninstall(std::forward<decltype(args)>(args)...); });
    defineAction("update", [](auto&&... args) { return update(std::forward<decltype(args)>(args)...); });
    defineAction("repair", &repair);
    defineVerify();
    defineHold("hold", &hold);
    defineHold("unhold", &unhold);
    defineMethod<HSCPlazQItem>(
        "needed_items", &findNeeded,
        documented<HSCPlazQItem>(
            "needed_items(self)\n--\n\n"
            "The items that its dependencies name, each in the revision asked for, else the latest.\n\n"
            "Raises NotFoundError when the hub has no such item.")
            .c_str());
}

void fill(py::module_ module) {
    py::options options;
    options.disable_function_signatures(); // docstrings begin with signatures that the inspect module reads
    defineStore(module);
    defineItem(module);
    defineQueries(module);
    defineActions(module);
    defineSettings(module);
    serveCaches();
    Call::serveHub();
}

/// RATIONALE: asked before pybind11 is, which would wait for ever for the lock of the first interpreter.
int load(PyObject* module) {
    static bool isLoaded = false;
    if (PyInterpreterState_Get() != PyInterpreterState_Main() || std::exchange(isLoaded, true)) {
        PyErr_SetString(PyExc_ImportError, "a process can load plaz once, in its first interpreter");
        return -1;
    }
    try {
        fill(py::reinterpret_borrow<py::module_>(module));
        return 0;
    } catch (py::error_already_set& raised) {
        py::raise_from(raised, PyExc_ImportError, "plaz cannot be loaded");
    } catch (const std::exception& failure) {
        PyErr_SetString(PyExc_ImportError, failure.what());
    }
    return -1;
}

} // namespace

/// RATIONALE: in two phases, so that every interpreter asks load(). Else it is given a copy of what another one loaded.
PyMODINIT_FUNC PyInit__plaz() { // NOLINT(bugprone-reserved-identifier)
    PYBIND11_CHECK_PYTHON_VERSION
    static PyModuleDef_Slot slots[] = {{Py_mod_exec, reinterpret_cast<void*>(&load)}, {0, nullptr}};
    static PyModuleDef definition = {
        PyModuleDef_HEAD_INIT, "_plaz", nullptr, 0, nullptr, slots, nullptr, nullptr, nullptr};
    return PyModuleDef_Init(&definition);
}
