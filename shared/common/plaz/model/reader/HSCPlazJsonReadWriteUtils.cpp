#include "plaz/model/reader/HSCPlazJsonReadWriteUtils.h"

#include "plaz/model/reader/HSCPlazJsonCheck.h"
#include "plaz/model/reader/HSCPlazJsonDocument.h"
#include "support/HCRapidJsonReadWriteUtils.h"

namespace {

std::string getSchemaFile(HSCPlazSchema::Kind kind, const std::string& file) {
    HSCPlazFindings found;
    HSCPlazJsonDocument document;
    document.load(file, found);
    document.checkVersion(found);
    found.tell();
    return HSCPlazSchema::getFile(kind, document.getMajor(), document.getMinor());
}

} // namespace

bool HSCPlazJsonReadWriteUtils::isJsonFileValid(const std::string& file) {
    const HSCPlazReport report = HSCPlazJsonCheck::findProblem(file, HSCPlazLimits::File::list);
    report.send();
    return report.isEmpty();
}

bool HSCPlazJsonReadWriteUtils::inferFileVersion(const std::string& file, std::string& major, std::string& minor) {
    HSCPlazFindings found;
    HSCPlazJsonDocument document;
    document.load(file, found);
    document.checkVersion(found);
    found.tell();
    if (!document.isParsed()) return false;
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

void HSCPlazJsonReadWriteUtils::validatePlazSchemaFile(const std::string& schema) {
    HCRapidJsonReadWriteUtils::validateSchemaFile(schema);
}

void HSCPlazJsonReadWriteUtils::validateQStoreSchemaFile(const std::string& schema) {
    HCRapidJsonReadWriteUtils::validateSchemaFile(schema);
}

void HSCPlazJsonReadWriteUtils::validateLocalDBSchemaFile(const std::string& schema) {
    HCRapidJsonReadWriteUtils::validateSchemaFile(schema);
}
