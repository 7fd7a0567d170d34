#include "plaz/model/reader/HSCPlazJsonCheck.h"

#include "plaz/base/HSCPlazDebugLog.h"
#include "plaz/base/HSCPlazMsg.h"
#include "support/HCRapidJsonReadWriteUtils.h"
#include "support/HIOStream.h"
#include "support/HPAParamMgr.h"
#include "support/HUTFile.h"

HSCPlazReport HSCPlazJsonCheck::findProblem(const std::string& file) {
    if (!HPAParamMgr::getParamMgr().getValueAsBool("plaz.enableJsonFileValidation")) return {};
    if (file.empty()) return {Msg::fileNameEmpty, MsgSeverity::fileError, file};
    if (!HUTFile::isRegularFile(file)) return {Msg::fileMissing, MsgSeverity::fileError, file};
    if (HIOStream::isContainer(file)) return {};

    std::string text;
    HCRapidJsonDocument document;
    const bool isRead = HIOStream::read(file, text) == HIOStream::Status::ok;
    if (isRead && HCRapidJsonReadWriteUtils::parseInPlace(text, document)) return {};
    return {Msg::fileNotJson, MsgSeverity::fileWarning, file,
            isRead ? HCRapidJsonReadWriteUtils::GetErrorMsgFromDocument(document) : "it cannot be read"};
}

bool HSCPlazJsonCheck::isWhole(const std::string& file, HSCPlazReport& problem) {
    if (file.empty()) return false;
    const HSCPlazReport found = findProblem(file);
    problem.append(found);
    if (!found.isEmpty()) return false;
    HSCPlazDebugLog::inside("HSCPlazUtils::isInstalledFileValid", " installed catalog file ", file, " is valid.");
    return true;
}
