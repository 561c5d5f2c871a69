#include "foundation/PlainText.h"

namespace quorvane {

namespace {

/// C0, DEL and C1 (ECMA-48), and the marks that turn the direction of what follows (Unicode,
/// "bidirectional formatting").
bool isObeyed(char16_t character) {
    return character < 0x20 || (character >= 0x7f && character < 0xa0) ||
           (character >= 0x202a && character <= 0x202e) ||
           (character >= 0x2066 && character <= 0x2069);
}

} // namespace

QString plainText(QString text, Lines lines) {
    for (QChar& character : text) {
        const bool isKept = character == u'\t' || (lines == Lines::several && character == u'\n');
        if (!isKept && isObeyed(character.unicode()))
            character = QChar::ReplacementCharacter;
    }
    return text;
}

} // namespace quorvane
