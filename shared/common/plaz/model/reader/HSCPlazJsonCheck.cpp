#include "plaz/model/reader/HSCPlazJsonCheck.h"

#include "plaz/base/HSCPlazDebugLog.h"
#include "plaz/base/HSCPlazMsg.h"
#include "plaz/model/reader/HSCPlazJsonDocument.h"
#include "support/HIOStream.h"
#include "support/HPAParamMgr.h"
#include "support/HUTFile.h"

HSCPlazReport HSCPlazJsonCheck::findProblem(const std::string& file, HSCPlazLimits::File kind) {
    if (!HPAParamMgr::getParamMgr().getValueAsBool("plaz.enableJsonFileValidation")) return {};
    if (file.empty()) return {Msg::fileNameEmpty, MsgSeverity::fileError, file};
    if (!HUTFile::isRegularFile(file)) return {Msg::fileMissing, MsgSeverity::fileError, file};
    if (HIOStream::isContainer(file)) return {};

    HSCPlazFindings found;
    HSCPlazJsonDocument document(kind);
    document.load(file, found);
    if (found.isEmpty()) return {};
    const HSCPlazFinding& problem = found.getAll().front();
    if (problem.kind == HSCPlazFinding::Kind::beyondLimit) return found.toReport();
    return {Msg::fileNotJson, MsgSeverity::fileWarning, file,
            problem.kind == HSCPlazFinding::Kind::notJson ? problem.text : "it cannot be read"};
}

bool HSCPlazJsonCheck::isWhole(const std::string& file, HSCPlazLimits::File kind, HSCPlazReport& problem) {
    if (file.empty()) return false;
    const HSCPlazReport found = findProblem(file, kind);
    problem.append(found);
    if (!found.isEmpty()) return false;
    HSCPlazDebugLog::inside("HSCPlazUtils::isInstalledFileValid", " installed catalog file ", file, " is valid.");
    return true;
}
