#include "store/AssetIdentifier.h"

#include <array>
#include <cstring>
#include <tuple>

namespace quorvane {

namespace {

constexpr std::string_view tailBytes = "/L0/001";

int upperCaseDigit(char c) {
    return c >= '0' && c <= '9' ? c - '0' : c >= 'A' && c <= 'F' ? c - 'A' + 10 : -1;
}

/// Null for what a UUID would not be written as again.
QUuid canonicalUuid(std::string_view text) {
    constexpr std::string_view form = "xxxxxxxx-xxxx-xxxx-xxxx-xxxxxxxxxxxx"; // RFC 4122, section 3
    if (text.size() != form.size())
        return {};
    std::array<char, 16> bytes{};
    std::size_t digits = 0;
    for (std::size_t i = 0; i < form.size(); ++i) {
        if (form[i] == '-') {
            if (text[i] != '-')
                return {};
            continue;
        }
        const int digit = upperCaseDigit(text[i]);
        if (digit < 0)
            return {};
        char& byte = bytes[digits++ / 2];
        byte = static_cast<char>(static_cast<unsigned char>(byte) << 4 | digit);
    }
    return QUuid::fromRfc4122(QByteArrayView(bytes.data(), qsizetype(bytes.size())));
}

} // namespace

AssetIdentifier AssetIdentifier::of(std::string_view text) {
    if (text.ends_with(tailBytes))
        return ofUuid(text.substr(0, text.size() - tailBytes.size()));
    AssetIdentifier other;
    other.other_ = QString::fromUtf8(text.data(), qsizetype(text.size()));
    return other;
}

AssetIdentifier AssetIdentifier::ofUuid(std::string_view uuid) {
    AssetIdentifier identifier(canonicalUuid(uuid));
    if (identifier.uuid_.isNull())
        identifier.other_ = QString::fromUtf8(uuid.data(), qsizetype(uuid.size())) + tail;
    return identifier;
}

QString AssetIdentifier::text() const {
    return uuid_.isNull() ? other_ : uuid_.toString(QUuid::WithoutBraces).toUpper() + tail;
}

std::strong_ordering AssetIdentifier::operator<=>(const AssetIdentifier& other) const {
    const auto number = [](const QUuid& uuid) {
        return std::tie(uuid.data1, uuid.data2, uuid.data3);
    };
    if (const auto order = number(uuid_) <=> number(other.uuid_); std::is_neq(order))
        return order;
    if (const int order = std::memcmp(uuid_.data4, other.uuid_.data4, sizeof uuid_.data4))
        return order <=> 0;
    return other_.compare(other.other_) <=> 0;
}

} // namespace quorvane
