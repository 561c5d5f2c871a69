#pragma once

#include <QQuickTextDocument>

namespace quorvane {

/// Gives every line of an editable text the same height, which QML offers for other texts only.
class LineHeight : public QObject {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QQuickTextDocument* document MEMBER document_ NOTIFY changed)
    Q_PROPERTY(int height MEMBER height_ NOTIFY changed)

  public:
    explicit LineHeight(QObject* parent = nullptr);

  Q_SIGNALS:
    void changed();

  private:
    void follow();
    void apply();

    QQuickTextDocument* document_ = nullptr;
    int height_ = 0;
    bool isApplying_ = false;
    QMetaObject::Connection text_;
};

} // namespace quorvane
