#include "plaz/model/reader/HSCPlazFindings.h"

#include "plaz/base/HSCPlazMsg.h"
#include "support/HCRapidJsonReadWriteUtils.h"

namespace {

using Json = HCRapidJsonReadWriteUtils;

const MsgId<2>& refusalOf(HSCPlazFinding::Kind kind) {
    return kind == HSCPlazFinding::Kind::itemRefused ? Msg::itemRefused : Msg::storeRefused;
}

} // namespace

std::string HSCPlazFinding::toText() const {
    return ComMsgMgrInstance("", 0, "common", refusalOf(kind), subject, text).getMessage();
}

void HSCPlazFinding::tell() const {
    switch (kind) {
    case Kind::unreadable:
        return Json::errorReadingJsonFile(subject);
    case Kind::notJson:
    case Kind::breaksSchema:
        return Json::errorParsingJsonFile(subject, text);
    case Kind::schemaUnreadable:
        return Json::errorReadingSchemaFile(subject);
    case Kind::schemaNotJson:
        return Json::errorParsingSchemaFile(subject, text);
    case Kind::itemRefused:
    case Kind::storeRefused:
        ComMsgMgr::send(refusalOf(kind), MsgSeverity::criticalWarning, subject, text);
    }
}

void HSCPlazFindings::tell() {
    for (const HSCPlazFinding& finding : std::exchange(m_all, {})) finding.tell();
}
