#include "plaz/HSCPlazUtils.h"

#include "plaz/hub_fixture.h"

using UtilsTest = ContextTest;

// A switch taken by more than its first letter.
TEST_F(UtilsTest, LocalUserDataIsYesByItsFirstLetter) {
    for (const auto& [value, expected] :
         {std::pair("Y", true), {"yes", true}, {"no", false}, {"", false}, {" Y", false}}) {
        env.set("ZENTOR_PLAZ_LOCAL_USER_DATA", value);
        EXPECT_EQ(HSCPlazUtils::useLocalStore(), expected) << value;
    }
}

// A place looked up of the wrong store, made up for one that the hub does not have, or below the wrong root.
TEST_F(HubOnDiskTest, StoresAreFoundByName) {
    files.temp.write("data/plaz/plaz_config.json", R"({"plaz": {"gda_data_root": "/gda", "app_data_root": "/app"}})");
    for (const char* name : {"other", "own"}) files.addStore(name, "board", false);
    files.ship();
    HSCPlazQStore& own = *hub().getStore("own");
    own.setLocalRootDir("/local");
    const std::string root = hub().getRoot();
    const std::pair<std::string (*)(const std::string&), std::string> lookUps[] = {
        {HSCPlazUtils::getStoreLocalRootDir, "/local"},
        {HSCPlazUtils::getStoreRootDir, "/gda/" + root + "/own"},
        {HSCPlazUtils::getStoreUrl, own.getUrl()},
        {HSCPlazUtils::getStoreBranch, "master"}};
    for (const auto& [lookUp, expected] : lookUps) {
        EXPECT_EQ(lookUp("own"), expected);
        EXPECT_EQ(lookUp("absent"), "");
    }
    files.env.set("ZENTOR_PLAZ_LOCAL_USER_DATA", "yes");
    EXPECT_EQ(HSCPlazUtils::getPlazRootDir(), "/app/" + root);
    EXPECT_EQ(HSCPlazUtils::getPlazDefaultDownloadRootDir(), files.temp.path("appdata/2024.2/" + root));
}

// A chosen directory that is silently taken although it cannot serve, or shared by two stores.
TEST_F(UtilsTest, ChosenDirectoriesAreCheckedAndCreated) {
    EXPECT_TRUE(HSCPlazUtils::validateAndCreateDir("", false));
    EXPECT_EQ(outcome(HSCPlazUtils::validateAndCreateDir(temp.path("new/dir"), true)), "");
    EXPECT_TRUE(HSCPlazUtils::validateAndCreateDir(temp.path("new/other"), false));
    temp.write("file", "");
    EXPECT_FALSE(HSCPlazUtils::validateAndCreateDir(temp.path("file/below"), false));

    HSCPlazQStoreModel model, otherModel;
    otherModel.setInstallDir(temp.path("new/dir"));
    HSCPlaz hub;
    HSCPlazQStore *own = new HSCPlazQStore(&hub), *other = new HSCPlazQStore(&hub);
    own->assignModel(&model);
    other->assignModel(&otherModel);
    for (HSCPlazQStore* each : {own, other}) hub.addStore(each);
    EXPECT_FALSE(HSCPlazUtils::setQStoreLocalDir(own, temp.path("new/./dir")));
    EXPECT_EQ(messages.at(0).label, "INFO");
    EXPECT_EQ(takeIds(), (Names{"17-1670", "17-1581", "17-1668"}));
    const bool hasLinks = test_system::makeLink(temp.path("new/dir"), temp.path("way"));
    EXPECT_NE(HSCPlazUtils::setQStoreLocalDir(own, temp.path("way")), hasLinks);
    EXPECT_TRUE(HSCPlazUtils::setQStoreLocalDir(own, temp.path("new/x/../other")));
    EXPECT_EQ(own->getLocalRootDir(), temp.path("new/other"));
    otherModel.setInstallDir(temp.path("Absent"));
    const bool isCaseIgnored = HUTFile::exists(temp.path("FILE"));
    EXPECT_NE(HSCPlazUtils::setQStoreLocalDir(own, temp.path("absent")), isCaseIgnored);
}
