#include "library/LibraryChoices.h"

#include "foundation/File.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>

namespace quorvane {

namespace {

const QString originalsName = QStringLiteral("originals");
const QString versionsName = QStringLiteral("versions");
const QString mirrorName = QStringLiteral("mirrorAlbums");
const QString liveName = QStringLiteral("live");
const QString captionsName = QStringLiteral("captions");
const QString editedName = QStringLiteral("edited");
const QString originalName = QStringLiteral("original");
const QString motionName = QStringLiteral("motion");
const QString stillName = QStringLiteral("still");

QString nameOf(LibraryChoices::Versions versions) {
    return versions == LibraryChoices::Versions::edited ? editedName : originalName;
}

/// The choices for all libraries, by what tells one from another.
QJsonObject allChoices(const Preferences& preferences) {
    const auto bytes = preferences.data(preferenceKeys::libraryChoices);
    return bytes ? QJsonDocument::fromJson(*bytes).object() : QJsonObject();
}

} // namespace

OriginalsMapping OriginalsMapping::parse(const QString& text) {
    const qsizetype equals = text.indexOf(u'=');
    OriginalsMapping mapping{pathFrom(text.left(std::max<qsizetype>(equals, 0))).lexically_normal(),
                             pathFrom(text.mid(equals + 1)).lexically_normal()};
    if (equals < 1 || !mapping.from.is_absolute() || !mapping.to.is_absolute())
        throw Error(QStringLiteral("--originals ESKİ=YENİ bekler, ikisi de tam yol olarak "
                                   "(ör. /Volumes/Disk=/mnt/disk): ") +
                    text);
    return mapping;
}

QString LibraryChoices::form() const {
    return nameOf(versions) + (live == Live::motion ? u'+' + motionName : QString());
}

void LibraryChoices::add(const OriginalsMapping& mapping) {
    std::erase_if(originals, [&](const auto& each) { return each.from == mapping.from; });
    originals.push_back(mapping);
}

LibraryChoices LibraryChoices::of(const QString& library, const Preferences& preferences) {
    const QJsonObject object = allChoices(preferences)[library].toObject();
    LibraryChoices choices;
    for (const QJsonValue each : object[originalsName].toArray()) {
        const OriginalsMapping mapping{pathFrom(each[0].toString()), pathFrom(each[1].toString())};
        if (mapping.from.is_absolute() && mapping.to.is_absolute())
            choices.originals.push_back(mapping);
    }
    choices.mirrorAlbums = object[mirrorName].toBool();
    if (object[versionsName].toString() == editedName)
        choices.versions = Versions::edited;
    if (object[liveName].toString() == motionName)
        choices.live = Live::motion;
    choices.captions = object[captionsName].toBool();
    return choices;
}

void LibraryChoices::save(const QString& library, Preferences& preferences) const {
    if (*this == of(library, preferences))
        return;
    QJsonArray mappings;
    for (const OriginalsMapping& mapping : originals)
        mappings += QJsonArray{pathText(mapping.from), pathText(mapping.to)};
    QJsonObject all = allChoices(preferences);
    all[library] = QJsonObject{{originalsName, mappings},
                               {versionsName, nameOf(versions)},
                               {liveName, live == Live::motion ? motionName : stillName},
                               {captionsName, captions},
                               {mirrorName, mirrorAlbums}};
    preferences.setData(preferenceKeys::libraryChoices,
                        QJsonDocument(all).toJson(QJsonDocument::Compact));
}

} // namespace quorvane
