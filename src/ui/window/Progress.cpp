#include "ui/window/Progress.h"

#include <QAccessible>
#include <QAccessibleObject>
#include <QQuickWindow>

#include <cmath>

namespace quorvane {

namespace {

/// What QML attaches to the items that are not ignored.
QObject* attached(const QQuickItem& item) {
    for (QObject* child : item.children())
        if (child->inherits("QQuickAccessibleAttached"))
            return child;
    return nullptr;
}

class ProgressAccess final : public QAccessibleObject, public QAccessibleValueInterface {
  public:
    explicit ProgressAccess(Progress& item) : QAccessibleObject(&item), item_(item) {}

    QAccessible::Role role() const override { return QAccessible::ProgressBar; }
    QAccessible::State state() const override {
        QAccessible::State state;
        state.readOnly = true;
        state.invisible = !item_.isVisible();
        return state;
    }
    QString text(QAccessible::Text kind) const override {
        const QObject* words = attached(item_);
        return kind == QAccessible::Value  ? QStringLiteral("%%1").arg(std::floor(item_.value()))
               : words == nullptr          ? QString()
               : kind == QAccessible::Name ? words->property("name").toString()
                                           : QString();
    }
    QRect rect() const override {
        const QRectF place = item_.mapRectToScene(QRectF(QPointF(), item_.size()));
        return item_.window() == nullptr
                   ? QRect()
                   : place.toRect().translated(item_.window()->mapToGlobal(QPoint()));
    }
    QWindow* window() const override { return item_.window(); }
    QAccessibleInterface* parent() const override {
        for (QQuickItem* around = item_.parentItem(); around; around = around->parentItem())
            if (attached(*around) != nullptr)
                return QAccessible::queryAccessibleInterface(around);
        return QAccessible::queryAccessibleInterface(item_.window());
    }
    QAccessibleInterface* child(int) const override { return nullptr; }
    int childCount() const override { return 0; }
    int indexOfChild(const QAccessibleInterface*) const override { return -1; }

    void* interface_cast(QAccessible::InterfaceType type) override {
        return type == QAccessible::ValueInterface ? static_cast<QAccessibleValueInterface*>(this)
                                                   : QAccessibleObject::interface_cast(type);
    }
    QVariant currentValue() const override { return item_.value(); }
    void setCurrentValue(const QVariant&) override {}
    QVariant maximumValue() const override { return 100.0; }
    QVariant minimumValue() const override { return 0.0; }
    QVariant minimumStepSize() const override { return 1.0; }

  private:
    Progress& item_;
};

} // namespace

void Progress::setValue(double value) {
    if (value == value_)
        return;
    const bool isHeard = std::floor(value) != std::floor(value_);
    value_ = value;
    Q_EMIT valueChanged();
    if (isHeard && QAccessible::isActive()) {
        QAccessibleValueChangeEvent event(this, value_);
        QAccessible::updateAccessibility(&event);
    }
}

void Progress::makeAccessible() {
    QAccessible::installFactory([](const QString& type, QObject* object) -> QAccessibleInterface* {
        return type == QString::fromLatin1(staticMetaObject.className())
                   ? new ProgressAccess(*static_cast<Progress*>(object)) // NOLINT: the toolkit's
                   : nullptr;
    });
}

} // namespace quorvane
