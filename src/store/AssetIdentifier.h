#pragma once

#include <QHashFunctions>
#include <QString>
#include <QUuid>

#include <compare>
#include <string_view>

namespace quorvane {

/// An asset's local identifier: "<UUID>/L0/001", in upper case. Held as the number that it is,
/// which takes a fraction of the text's memory: a library has up to a million. Any other text is
/// held as a text. In the order of the texts, other ones first.
class AssetIdentifier {
  public:
    static inline const QString tail = QStringLiteral("/L0/001");

    AssetIdentifier() = default;
    // NOLINTNEXTLINE(google-explicit-constructor): it is that text
    AssetIdentifier(const QString& text) : AssetIdentifier(of(text.toStdString())) {}
    explicit AssetIdentifier(const QUuid& uuid) : uuid_(uuid) {}
    /// From UTF-8.
    static AssetIdentifier of(std::string_view text);
    /// The same from what stands before the tail.
    static AssetIdentifier ofUuid(std::string_view uuid);

    QString text() const;
    // NOLINTNEXTLINE(google-explicit-constructor): it is that text
    operator QString() const { return text(); }

    /// Null when the text is not of that form.
    const QUuid& uuid() const { return uuid_; }

    bool operator==(const AssetIdentifier&) const = default;
    bool operator==(const QString& text) const { return *this == AssetIdentifier(text); }
    std::strong_ordering operator<=>(const AssetIdentifier& other) const;

  private:
    QUuid uuid_;
    QString other_; ///< the text of one that has no `uuid_`
};

} // namespace quorvane

template <>
struct std::hash<quorvane::AssetIdentifier> {
    std::size_t operator()(const quorvane::AssetIdentifier& identifier) const noexcept {
        return identifier.uuid().isNull() ? qHash(identifier.text()) : qHash(identifier.uuid());
    }
};
