#include "benchmarks.h"

#include "BareStartUp.h"
#include "Comparison.h"
#include "Workspace.h"
#include "plaz/HSCPlazMgr.h"
#include "plaz/model/HSCPlaz.h"
#include "plaz/model/HSCPlazQItem.h"
#include "plaz/model/HSCPlazQItemModel.h"
#include "plaz/model/HSCPlazQStore.h"
#include "support/HPAParamMgr.h"
#include "support/HUTEnv.h"
#include "support/HUTFork.h"

#include <boost/filesystem.hpp>

#include <cstdio>
#include <cstring>
#include <malloc.h>
#include <sstream>
#include <stdexcept>

namespace {

constexpr const char* validated = "validated";

struct StartUp {
    double seconds = 0;
    double bytesPerItem = 0;
};

std::size_t textBytesOf(const HSCPlazQItemModel& item) {
    std::size_t bytes = 0;
    for (const std::string* text :
         {&item.getName(), &item.getDisplayName(), &item.getDescription(), &item.getUrl(), &item.getMetadataFile(),
          &item.getItemRoot(), &item.getStoreName(), &item.getRoot(), &item.getCompany(), &item.getCompanyDisplayName(),
          &item.getAuthor(), &item.getCategory(), &item.getRevision(), &item.getLatestRevision(), &item.getLogo(),
          &item.getWebsite(), &item.getCommitId()})
        bytes += text->size();
    for (const std::string& text : item.getCategories()) bytes += text.size();
    for (const std::string& text : item.getSearchKeywords()) bytes += text.size();
    for (const HSCPlazRevisionModel& revision : item.getRevisions())
        bytes += revision.revision.size() + revision.commitId.size() + revision.history.size();
    for (const HSCPlazQItemDependency* dependency : item.getDependencies())
        bytes += dependency->getItem().size() + dependency->getStore().size() + dependency->getRevision().size();
    return bytes;
}

void setValidation(bool validate) {
    HPAParamMgr::getParamMgr().setValue("plaz.enableSchemaValidation", validate ? "true" : "false");
}

/// What a command needs that is about the first store.
StartUp startFirst(bool validate) {
    setValidation(validate);
    StartUp result;
    result.seconds = secondsOf([] {
        if (HSCPlazMgr::getInstance().getHub().getStores().front()->getItems().empty())
            throw std::runtime_error("the store holds no items");
    });
    return result;
}

StartUp startOurs(bool validate) {
    setValidation(validate);
    const std::size_t before = mallinfo2().uordblks;
    HSCPlaz* hub = nullptr;
    StartUp result;
    result.seconds = secondsOf([&] {
        hub = &HSCPlazMgr::getInstance().getHub();
        for (const HSCPlazQStore* store : hub->getStores()) store->getItems();
    });
    std::size_t bytes = mallinfo2().uordblks - before;
    std::size_t items = 0;
    for (const HSCPlazQStore* store : hub->getStores())
        for (const HSCPlazQItem* item : store->getItems()) {
            if (item->getDescription().empty()) throw std::runtime_error("an item has not been read");
            bytes -= textBytesOf(*item->getModel());
            ++items;
        }
    if (items == 0) throw std::runtime_error("the hub holds no items");
    result.bytesPerItem = static_cast<double>(bytes) / static_cast<double>(items);
    return result;
}

StartUp startFloor(const std::string& data, bool validate) {
    const std::string schemas = validate ? HUTEnv::getGDAAppRoot("data") + "/plaz/schemas/json" : std::string();
    StartUp result;
    result.seconds = secondsOf([&] {
        if (startUpBare(data, schemas) == 0) throw std::runtime_error("no items");
    });
    return result;
}

// The hub of a process is read once, so each round is a process of its own.
StartUp inFreshProcess(const std::string& kind, const std::string& data, bool validate) {
    const std::string output = Workspace::get().path("start-up.txt");
    HUTFork self;
    self.setProg(boost::filesystem::read_symlink("/proc/self/exe").string(), false);
    for (const std::string& arg : {std::string("--start-up"), kind, data, std::string(validate ? validated : "not")})
        self.addArg(arg);
    self.setLogFile(output);
    const int status = self.launch(true, true, true, true);
    std::istringstream text(readFile(output));
    StartUp result;
    if (status != 0 || !(text >> result.seconds >> result.bytesPerItem)) throw std::runtime_error(text.str());
    return result;
}

void startUp(benchmark::State& state, std::size_t items, bool validate) {
    constexpr double largest = 3 * 1024;
    Workspace& workspace = Workspace::get();
    const std::string data = workspace.dataRootOf(items);
    workspace.useDataRoot(data);
    double bytesPerItem = 0;
    const auto ours = [&](int) {
        const StartUp result = inFreshProcess("ours", data, validate);
        bytesPerItem = result.bytesPerItem;
        return result.seconds;
    };
    const auto floor = [&](int) { return inFreshProcess("floor", data, validate).seconds; };
    compare(state, items >= 10000 ? 21 : 41, {1.25}, items, ours, floor);
    // What a hub costs whatever it holds would count for a small store.
    if (items < 1000) return;
    state.counters["bytes_per_item"] = bytesPerItem;
    state.counters["max_bytes_per_item"] = largest;
}

/// A store costs nothing that a command about another one is asked.
void startUpBesideLarge(benchmark::State& state) {
    Workspace& workspace = Workspace::get();
    const std::string floorData = workspace.dataRootOf(100), data = workspace.path("data-beside");
    BenchData::writeDataRoot(data, {{"store", 100}, {"large", 10000}});
    const auto ours = [&](int) {
        workspace.useDataRoot(data);
        return inFreshProcess("first", data, true).seconds;
    };
    const auto floor = [&](int) {
        workspace.useDataRoot(floorData);
        return inFreshProcess("floor", floorData, true).seconds;
    };
    compare(state, 41, {1.25}, 100, ours, floor);
}

} // namespace

void addStartUp() {
    benchmark::RegisterBenchmark("start-up, 100 items beside 10000, validated", startUpBesideLarge)
        ->Iterations(1)
        ->UseManualTime();
    for (const std::size_t items : storeSizes)
        for (const bool validate : {false, true}) {
            const std::string name = "start-up, " + std::to_string(items) + " items" + (validate ? ", validated" : "");
            benchmark::RegisterBenchmark(name.c_str(), startUp, items, validate)->Iterations(1)->UseManualTime();
        }
}

int startUpOnce(const char* kind, const char* data, const char* validate) {
    const bool validates = std::strcmp(validate, validated) == 0;
    const std::string side = kind;
    const StartUp result = side == "ours"    ? startOurs(validates)
                           : side == "first" ? startFirst(validates)
                                             : startFloor(data, validates);
    std::printf("%.9f %.1f\n", result.seconds, result.bytesPerItem);
    return 0;
}
