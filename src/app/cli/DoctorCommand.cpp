#include "app/SessionCheck.h"
#include "app/cli/LibraryChoice.h"
#include "app/cli/Program.h"

#include <QJsonArray>

using namespace Qt::StringLiterals;

namespace quorvane::cli {

namespace {

QString markOf(Finding::State state) {
    switch (state) {
    case Finding::State::fine:
        return u"✓"_s;
    case Finding::State::warning:
        return u"!"_s;
    case Finding::State::faulty:
        return u"✗"_s;
    case Finding::State::unknown:
        break;
    }
    return u"?"_s;
}

QString commandFor(Finding::Remedy remedy) {
    switch (remedy) {
    case Finding::Remedy::signIn:
        return u": quorvane-cli login"_s;
    case Finding::Remedy::chooseLibrary:
        return u": quorvane-cli sync --library YOL"_s;
    case Finding::Remedy::none:
        break;
    }
    return {};
}

/// "✓ Title: what", and what to do on a line below.
QString textOf(const std::vector<Finding>& findings) {
    QStringList lines;
    for (const Finding& finding : findings) {
        lines += markOf(finding.state) + u' ' + finding.title + u": "_s + finding.what;
        if (!finding.advice.isEmpty())
            lines += u"    → "_s + finding.advice + commandFor(finding.remedy);
    }
    return lines.join(u'\n');
}

/// {"fine", "checks": [{"id", "title", "fine" (null: unknown), "what", "advice"}]}
QJsonObject findingsJson(const std::vector<Finding>& findings) {
    QJsonArray checks;
    for (const Finding& finding : findings)
        checks.append(
            QJsonObject{{u"id"_s, finding.id},
                        {u"title"_s, finding.title},
                        {u"fine"_s, finding.state == Finding::State::unknown
                                        ? QJsonValue()
                                        : QJsonValue(finding.state == Finding::State::fine)},
                        {u"what"_s, finding.what},
                        {u"advice"_s, finding.advice + commandFor(finding.remedy)}});
    return {{u"fine"_s, areFine(findings)}, {u"checks"_s, checks}};
}

int doctor(Invocation& invocation) {
    invocation.console.setChannel(Console::Channel::silent);
    Program program(invocation);
    CoreServices& core = program.core;
    const auto library = [&] {
        return chooseLibrary(invocation.arguments.value(u"library"_s), core);
    };
    const std::vector<Finding> findings =
        checkSession(core, program.google, library, invocation.stop);
    if (invocation.arguments.has(u"json"_s))
        printJson(core.console, findingsJson(findings));
    else
        core.console.result(textOf(findings));
    return areFine(findings) ? done : someItemsLeft;
}

} // namespace

Command doctorCommand() {
    return {{QStringLiteral("doctor"),
             QStringLiteral("yedeklemenin önünde ne durduğunu denetler, hiçbir şeyi değiştirmez"),
             {{QStringLiteral("library"), QStringLiteral("YOL"),
               QStringLiteral("denetlenecek arşiv veya klasör")},
              {QStringLiteral("json"), {}, QStringLiteral("tek bir JSON nesnesi yazar")}}},
            doctor};
}

} // namespace quorvane::cli
