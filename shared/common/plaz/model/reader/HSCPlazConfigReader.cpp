#include "plaz/model/reader/HSCPlazConfigReader.h"

#include "plaz/model/reader/HSCPlazJsonDocument.h"
#include "plaz/model/reader/HSCPlazJsonFields.h"
#include "plaz/model/reader/HSCPlazMetadataKeys.h"
#include "support/HCRapidJsonReadWriteUtils.h"
#include "support/HUTText.h"

#include <utility>

namespace {

namespace Key = HSCPlazKey;
using Json = HCRapidJsonReadWriteUtils;
using Config = HSCPlazCfgModel;
using Repo = HSCPlazRepoCfgModel;
using rapidjson::Value;

constexpr HSCPlazJson::TextField<Config> dataRootFields[] = {
    {Key::gdaDataRoot, &Config::setGDADataRoot},
    {Key::appDataRoot, &Config::setAppDataRoot},
};

constexpr HSCPlazJson::TextField<Config> layoutFields[] = {
    {Key::root, &Config::setRoot},
    {Key::metadataFile, &Config::setMetadataFile},
    {Key::storesRoot, &Config::setStoresRoot},
};

constexpr HSCPlazJson::TextField<Repo> repoFields[] = {{Key::url, &Repo::setUrl, &HSCPlazTrustRules::gitUrl}};

constexpr HSCPlazJson::TextField<Repo> toolFields[] = {
    {Key::tool, &Repo::setTool},
    {Key::version, &Repo::setToolVersion},
};

constexpr HSCPlazJson::TextField<Repo> authenticationFields[] = {
    {Key::certificate, &Repo::setCertificate},
    {Key::userId, &Repo::setUserId},
    {Key::userToken, &Repo::setUserToken},
};

constexpr std::pair<const char*, HSCPlazTypes::AUTHMODE> modes[] = {
    {"BASIC", HSCPlazTypes::BASIC},
    {"OAUTH_1_0", HSCPlazTypes::OAUTH_1_0},
    {"OAUTH_2_0", HSCPlazTypes::OAUTH_2_0},
    {"SSH", HSCPlazTypes::SSH},
    {"AWS_SIGNATURE", HSCPlazTypes::AWS_SIGNATURE},
};

HSCPlazTypes::AUTHMODE toAuthMode(const std::string& text) {
    for (const auto& [name, mode] : modes)
        if (HUTText::equalIgnoringCase(text, name)) return mode;
    return HSCPlazTypes::NONE;
}

std::unique_ptr<Repo> readRepository(const Value& entry) {
    auto repo = std::make_unique<Repo>();
    HSCPlazJson::fillFields(repoFields, entry, *repo);
    if (const Value* toolchain = Json::FindObject(entry, Key::toolchain))
        HSCPlazJson::fillFields(toolFields, *toolchain, *repo);
    if (const Value* authentication = Json::FindObject(entry, Key::authentication)) {
        HSCPlazJson::fillFields(authenticationFields, *authentication, *repo);
        repo->setAuthMode(toAuthMode(Json::GetStringProperty(*authentication, Key::mode)));
    }
    return repo;
}

void addFaults(const Value& entry, const std::string& place, std::vector<std::string>& faults) {
    if (const std::string refusal = HSCPlazJson::findRefusal(repoFields, entry); !refusal.empty())
        faults.push_back('"' + place + "\" is not used: " + refusal);
    const Value* authentication = Json::FindObject(entry, Key::authentication);
    const std::string mode = authentication ? Json::GetStringProperty(*authentication, Key::mode) : std::string();
    if (mode.empty() || toAuthMode(mode) != HSCPlazTypes::NONE) return;
    std::string known;
    for (const auto& [name, value] : modes) known += (known.empty() ? "" : ", ") + std::string(name);
    faults.push_back('"' + place + "/authentication/mode\" is " + HSCPlazTrustRules::quote(mode) +
                     ", which is none of " + known);
}

void readSchemaVersion(const Value& version, Config& config) {
    for (const HSCPlazJson::Member& member : version.GetObject()) {
        if (!member.value.IsInt()) continue;
        if (HSCPlazJson::isNamed(member, Key::majorVersion)) config.setMajor(member.value.GetInt());
        if (HSCPlazJson::isNamed(member, Key::minorVersion)) config.setMinor(member.value.GetInt());
    }
}

} // namespace

void HSCPlazConfigReader::fill(const Value& root, HSCPlazCfgModel& model) {
    const Value* plaz = Json::FindObject(root, Key::plaz);
    if (!plaz) return;
    if (const Value* repository = Json::FindObject(*plaz, Key::remoteRepository))
        model.setPlazRepoCfgModel(readRepository(*repository));
    if (const Value* stores = Json::FindArray(*plaz, Key::qstores))
        for (const Value& entry : stores->GetArray()) model.addStoreRepoCfgModel(readRepository(entry));
    HSCPlazJson::fillFields(dataRootFields, *plaz, model);
    if (const Value* layout = Json::FindObject(*plaz, Key::config))
        HSCPlazJson::fillFields(layoutFields, *layout, model);
    if (const Value* version = Json::FindObject(*plaz, Key::schemaVersion)) readSchemaVersion(*version, model);
}

bool HSCPlazConfigReader::parse(const std::string& file, HSCPlazCfgModel* model) {
    if (!model) return false;
    HSCPlazFindings found;
    HSCPlazJsonDocument document;
    const bool isRead = document.load(file, found);
    found.tell();
    fill(document.getRoot(), *model);
    return isRead;
}

std::vector<std::string> HSCPlazConfigReader::findFaults(const Value& root) {
    std::vector<std::string> faults;
    const Value* plaz = Json::FindObject(root, Key::plaz);
    if (!plaz) return faults;
    if (const Value* repository = Json::FindObject(*plaz, Key::remoteRepository))
        addFaults(*repository, "/plaz/remote_repository", faults);
    std::size_t position = 0;
    if (const Value* stores = Json::FindArray(*plaz, Key::qstores))
        for (const Value& entry : stores->GetArray())
            addFaults(entry, "/plaz/qstores/" + std::to_string(position++), faults);
    return faults;
}
