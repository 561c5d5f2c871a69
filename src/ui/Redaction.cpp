#include "ui/Redaction.h"

#include "foundation/File.h"
#include "foundation/MediaKinds.h"

#include <QRegularExpression>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace quorvane {

namespace {

/// Everything from behind the line's tags and its first colon to the last extension of a picture or
/// movie: a name may hold any character.
const QRegularExpression& fileNames() {
    static const QRegularExpression pattern = [] {
        QStringList extensions;
        for (const MediaKind& kind : mediaKinds())
            extensions += QString(kind.extension);
        return QRegularExpression(
            u"^((?:\\[[^\\]]*\\] )*(?:[^:\\[]*?: )?).*\\.(%1)\\b"_s.arg(extensions.join(u'|')),
            QRegularExpression::CaseInsensitiveOption);
    }();
    return pattern;
}

QString withoutSecrets(QString line) {
    // Access and refresh tokens, codes and upload tokens: long runs without a blank.
    static const QRegularExpression token(
        u"(ya29\\.|1//|4/0|Bearer\\s+)[A-Za-z0-9._~+/=-]{8,}|[A-Za-z0-9_+/=-]{64,}"_s);
    static const QRegularExpression parameter(
        u"\\b(code|state|access_token|refresh_token|client_secret|id_token)=[^&\\s]+"_s);
    static const QRegularExpression email(u"[A-Za-z0-9._%+-]+@[A-Za-z0-9.-]+\\.[A-Za-z]{2,}"_s);
    line.replace(parameter, u"\\1=‹gizli›"_s);
    line.replace(token, u"‹gizli›"_s);
    return line.replace(email, u"‹e-posta›"_s);
}

/// The longest first: one may stand within another.
QString withoutKnown(QString text, QStringList known) {
    constexpr int shortest = 3; // letters; else words of the log would go with it
    std::ranges::sort(known, std::greater(), &QString::size);
    for (const QString& name : known)
        if (name.size() >= shortest)
            text.replace(name, u"‹ad›"_s);
    return text;
}

QString withoutNames(QString line) {
    static const QRegularExpression quoted(u"'[^']*'|\"[^\"]*\"|“[^”]*”"_s);
    static const QRegularExpression path(u"(?<![\\w:/])(~/?|/)(?=[^\\s/])[^:]*"_s);
    line.replace(quoted, u"‹ad›"_s);
    line.replace(fileNames(), u"\\1‹dosya›"_s);
    return line.replace(path, u"‹yol›"_s);
}

} // namespace

QString redacted(const QString& text, const std::filesystem::path& home, Names names,
                 const QStringList& known) {
    QString told = text;
    if (names == Names::hidden)
        told = withoutKnown(told, known);
    QStringList lines = told.split(u'\n');
    for (QString& line : lines) {
        line = withoutSecrets(line).replace(pathText(home), u"~"_s);
        if (names == Names::hidden)
            line = withoutNames(line);
    }
    return lines.join(u'\n');
}

} // namespace quorvane
