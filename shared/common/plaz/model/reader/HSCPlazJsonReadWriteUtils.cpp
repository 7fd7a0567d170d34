#include "plaz/model/reader/HSCPlazJsonReadWriteUtils.h"

#include "plaz/base/HSCPlazMsg.h"
#include "plaz/model/HSCPlazModel.h"
#include "plaz/model/reader/HSCPlazJsonDocument.h"
#include "plaz/model/reader/HSCPlazQItemCatalogReader.h"
#include "plaz/model/reader/HSCPlazQItemReader.h"
#include "plaz/model/reader/HSCPlazQStoreReader.h"
#include "plaz/model/reader/HSCPlazReader.h"
#include "plaz/model/reader/HSCPlazSchema.h"
#include "support/HCRapidJsonReadWriteUtils.h"
#include "support/HIOStream.h"
#include "support/HPAParamMgr.h"
#include "support/HUTFile.h"

namespace {

std::string getSchemaFile(HSCPlazSchema::Kind kind, const std::string& file) {
    HSCPlazJsonDocument document;
    document.load(file);
    return HSCPlazSchema::getFile(kind, document.getMajor(), document.getMinor());
}

} // namespace

bool HSCPlazJsonReadWriteUtils::isJsonFileValid(const std::string& file) {
    if (!HPAParamMgr::getParamMgr().getValueAsBool("plaz.enableJsonFileValidation")) return true;
    if (file.empty()) {
        ComMsgMgr::send(Msg::fileNameEmpty, MsgSeverity::fileError, file);
        return false;
    }
    if (!HUTFile::isRegularFile(file)) {
        ComMsgMgr::send(Msg::fileMissing, MsgSeverity::fileError, file);
        return false;
    }
    if (HIOStream::isContainer(file)) return true;

    std::string text;
    std::string error = "it cannot be read";
    rapidjson::Document document;
    if (HIOStream::read(file, text) == HIOStream::Status::ok &&
        HCRapidJsonReadWriteUtils::parseInPlace(text, document, error))
        return true;
    ComMsgMgr::send(Msg::fileNotJson, MsgSeverity::fileWarning, file, error);
    return false;
}

bool HSCPlazJsonReadWriteUtils::inferFileVersion(const std::string& file, std::string& major, std::string& minor) {
    HSCPlazJsonDocument document;
    if (!document.load(file) || !document.isParsed()) return false;
    major = std::to_string(document.getMajor());
    minor = std::to_string(document.getMinor());
    return true;
}

std::string HSCPlazJsonReadWriteUtils::getPlazJsonSchemaFile(const std::string& file) {
    return getSchemaFile(HSCPlazSchema::Kind::plaz, file);
}

std::string HSCPlazJsonReadWriteUtils::getQStoreJsonSchemaFile(const std::string& file) {
    return getSchemaFile(HSCPlazSchema::Kind::qstore, file);
}

std::string HSCPlazJsonReadWriteUtils::getQItemCatalogJsonSchemaFile(const std::string& file) {
    return getSchemaFile(HSCPlazSchema::Kind::qitemCatalog, file);
}

std::string HSCPlazJsonReadWriteUtils::getQItemJsonSchemaFile(const std::string& file) {
    return getSchemaFile(HSCPlazSchema::Kind::qitem, file);
}

std::string HSCPlazJsonReadWriteUtils::getLocalDBJsonSchemaFile() {
    return HSCPlazSchema::getFile(HSCPlazSchema::Kind::localDb, 0, 0);
}

std::string HSCPlazJsonReadWriteUtils::findSchemaViolation(const std::string& file, const std::string& schema) {
    HSCPlazJsonDocument document;
    if (!document.load(file) || !document.isParsed()) return "the file cannot be read as JSON";
    HSCPlazSchema* compiled = HSCPlazSchema::get(schema);
    return compiled ? compiled->findViolation(document.getRoot()) : "the schema \"" + schema + "\" cannot be used";
}

std::vector<std::string> HSCPlazJsonReadWriteUtils::findRefusedNames(const std::string& file) {
    std::vector<std::string> refusals;
    const auto collect = [&](const ComMsgMgr::Message& message) {
        for (const char* key : {Msg::itemRefused.key, Msg::storeRefused.key})
            if (std::string(key).compare(1, message.id.size(), message.id) == 0) refusals.push_back(message.text);
    };
    ComMsgMgr::Sink sink = ComMsgMgr::setSink(collect);
    // Each reader finds nothing in the files of the others.
    HSCPlazModel hub;
    HSCPlazQStoreModel store;
    HSCPlazQItemModel item;
    HSCPlazReader().parse(file, &hub);
    HSCPlazQStoreReader().parse(file, &store);
    HSCPlazQItemCatalogReader().parse(file, &hub, &store);
    HSCPlazQItemReader().parse(file, &item);
    ComMsgMgr::setSink(std::move(sink));
    return refusals;
}

void HSCPlazJsonReadWriteUtils::validatePlazSchemaFile(const std::string& schema) {
    HCRapidJsonReadWriteUtils::validateSchemaFile(schema);
}

void HSCPlazJsonReadWriteUtils::validateQStoreSchemaFile(const std::string& schema) {
    HCRapidJsonReadWriteUtils::validateSchemaFile(schema);
}

void HSCPlazJsonReadWriteUtils::validateLocalDBSchemaFile(const std::string& schema) {
    HCRapidJsonReadWriteUtils::validateSchemaFile(schema);
}
