#include "ui/LibrarySettings.h"

#include "foundation/File.h"

namespace quorvane {

using Versions = LibraryChoices::Versions;
using Live = LibraryChoices::Live;

LibrarySettings::LibrarySettings(MenuBarViewModel& model) : model_(model) {
    connect(&model_, &MenuBarViewModel::routeChanged, this, &LibrarySettings::takeLibrary);
    connect(&model_, &MenuBarViewModel::syncChanged, this, &LibrarySettings::changed);
    takeLibrary();
}

void LibrarySettings::takeLibrary() {
    choices_ = model_.library() ? model_.library()->choices : LibraryChoices();
    Q_EMIT changed();
}

QString LibrarySettings::name() const {
    return model_.library() ? pathText(model_.library()->root.stem()) : QString();
}

QString LibrarySettings::path() const {
    return model_.library() ? pathText(model_.library()->root) : QString();
}

bool LibrarySettings::isBundle() const {
    return model_.library() && model_.library()->isBundle;
}

bool LibrarySettings::sendsEdited() const {
    return choices_.versions == Versions::edited;
}

bool LibrarySettings::sendsMotion() const {
    return choices_.live == Live::motion;
}

bool LibrarySettings::canMirror() const {
    return mirrorsAlbums() || model_.selectedTargetAlbumID().isEmpty();
}

void LibrarySettings::setSendsEdited(bool sends) {
    choices_.versions = sends ? Versions::edited : Versions::original;
    choose();
}

void LibrarySettings::setSendsMotion(bool sends) {
    choices_.live = sends ? Live::motion : Live::still;
    choose();
}

void LibrarySettings::setMirrorsAlbums(bool mirrors) {
    choices_.mirrorAlbums = mirrors && canMirror();
    choose();
}

void LibrarySettings::setSendsCaptions(bool sends) {
    choices_.captions = sends;
    choose();
}

/// The library shows what was chosen once it is open again; until then this does.
void LibrarySettings::choose() {
    if (canChange() && isBundle() && choices_ != model_.library()->choices)
        model_.library()->choose(choices_);
    Q_EMIT changed();
}

void LibrarySettings::setShown(bool isShown) {
    isShown_ = isShown;
    Q_EMIT changed();
}

} // namespace quorvane
