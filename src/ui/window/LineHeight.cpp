#include "ui/window/LineHeight.h"

#include <QTextCursor>
#include <QTextDocument>

namespace quorvane {

LineHeight::LineHeight(QObject* parent) : QObject(parent) {
    connect(this, &LineHeight::changed, this, &LineHeight::follow);
}

void LineHeight::follow() {
    disconnect(text_);
    if (document_ == nullptr || document_->textDocument() == nullptr || height_ < 1)
        return;
    text_ = connect(document_->textDocument(), &QTextDocument::contentsChanged, this,
                    &LineHeight::apply);
    apply();
}

void LineHeight::apply() {
    if (isApplying_)
        return;
    isApplying_ = true;
    QTextBlockFormat format;
    format.setLineHeight(height_, QTextBlockFormat::FixedHeight);
    QTextCursor cursor(document_->textDocument());
    cursor.select(QTextCursor::Document);
    cursor.mergeBlockFormat(format);
    isApplying_ = false;
}

} // namespace quorvane
