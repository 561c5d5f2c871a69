#pragma once

#include "ui/ModelWorld.h"
#include "ui/StatusHost.h"
#include "ui/window/MainWindowController.h"

#include <QQuickItem>

namespace quorvane::test {

/// The real window over the real model, worked as a person works it.
class WindowWorld : public ModelWorld {
  public:
    WindowWorld();

    AutoSync automatic{*model, {preferences, clock, desktop}};
    MainWindowController window{*model, automatic, preferences};

    /// The visible item of that object name, also in popups; none when there is none.
    QQuickItem* find(const QString& objectName);
    /// Presses the middle of an item, and waits until nothing is under way.
    void click(const QString& objectName);
    void key(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier);
    void type(const QString& text);
    /// Opens the picker or menu button, and chooses the row with that title.
    void choose(const QString& opener, const QString& title);

    /// Every text that can be seen, in the order of the scene.
    QStringList texts();
    bool shows(const QString& text) { return texts().contains(text); }
    /// The object name of what has the keyboard.
    QString focus();
    /// Runs the event loop until the condition holds and a frame was drawn; false after ten
    /// seconds.
    bool awaitView(const std::function<bool()>& condition);
    void settleView();
    /// Saves what is seen; of NAME-light the same in the dark theme as well.
    void shot(const QString& name);
};

/// As NAME.png into $QUORVANE_WINDOW_SHOTS, else into build/screenshots.
void savePicture(const QImage& picture, const QString& name);

/// Says that there is a place for a status item, or that there never will be.
struct FixedHost final : StatusHost {
    explicit FixedHost(bool there) : isThere(there) {}
    void await(std::function<void()> appeared) override {
        if (isThere)
            appeared();
    }
    const bool isThere;
};

/// Calls `visit` with every visible item under `item`, parents first.
void forEachVisible(QQuickItem* item, const std::function<void(QQuickItem*)>& visit);

} // namespace quorvane::test
