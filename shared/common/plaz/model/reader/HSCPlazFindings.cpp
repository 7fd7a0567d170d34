#include "plaz/model/reader/HSCPlazFindings.h"

#include "plaz/base/HSCPlazMsg.h"
#include "support/HostMsg.h"

#include <algorithm>
#include <iterator>

namespace {

const MsgId<2>& refusalOf(HSCPlazFinding::Kind kind) {
    return kind == HSCPlazFinding::Kind::itemRefused ? Msg::itemRefused : Msg::storeRefused;
}

} // namespace

std::string HSCPlazFinding::toText() const {
    HSCPlazReport report;
    addTo(report);
    return report.getNotes().front().message.getMessage();
}

void HSCPlazFinding::addTo(HSCPlazReport& report) const {
    switch (kind) {
    case Kind::unreadable:
        return report.add(HostMsg::jsonFileUnreadable, MsgSeverity::fileError, subject);
    case Kind::beyondLimit:
        return report.add(Msg::limitExceeded, MsgSeverity::error, subject, text);
    case Kind::notJson:
    case Kind::breaksSchema:
        return report.add(HostMsg::jsonFileUnparsable, MsgSeverity::fileWarning, subject, text);
    case Kind::schemaUnreadable:
        return report.add(HostMsg::schemaFileUnreadable, MsgSeverity::fileError, subject);
    case Kind::schemaNotJson:
        return report.add(HostMsg::schemaFileUnparsable, MsgSeverity::fileWarning, subject, text);
    case Kind::itemRefused:
    case Kind::storeRefused:
        report.add(refusalOf(kind), MsgSeverity::criticalWarning, subject, text);
    }
}

bool HSCPlazFindings::tellOfDamage() const {
    using Kind = HSCPlazFinding::Kind;
    return std::any_of(m_all.begin(), m_all.end(), [](const HSCPlazFinding& finding) {
        return finding.kind == Kind::unreadable || finding.kind == Kind::notJson || finding.kind == Kind::beyondLimit;
    });
}

HSCPlazFindings HSCPlazFindings::withoutFaultsOfPublishers() const {
    HSCPlazFindings others;
    std::copy_if(m_all.begin(), m_all.end(), std::back_inserter(others.m_all), [](const HSCPlazFinding& finding) {
        return !finding.isRefusal() && finding.kind != HSCPlazFinding::Kind::breaksSchema;
    });
    return others;
}

HSCPlazReport HSCPlazFindings::toReport(const std::string& group) const {
    HSCPlazReport report;
    for (const HSCPlazFinding& finding : m_all) {
        HSCPlazReport one;
        finding.addTo(one);
        if (group.empty() || !finding.isRefusal())
            report.append(one);
        else
            report.appendOneOfMany(one, group);
    }
    return report;
}
