#pragma once

#include <QString>

#include <filesystem>
#include <functional>

namespace quorvane {

/// What the state model asks of the person's desktop. Called on the main thread; none of it blocks
/// or throws: a desktop that lacks something leaves it out.
class Desktop {
  public:
    virtual ~Desktop() = default;

    /// Shows a passing notice.
    virtual void notify(const QString& title, const QString& text) = 0;

    /// Opens the file with the program that the person uses for its kind.
    virtual void open(const std::filesystem::path& file) = 0;

    /// Shows the file in its folder.
    virtual void reveal(const std::filesystem::path& file) = 0;

    virtual bool startsAtLogin() const = 0;
    virtual void setStartsAtLogin(bool starts) = 0;

    /// Whether the connection costs by what is sent; false where nobody can tell.
    virtual bool isNetworkMetered() const { return false; }
    /// `changed` is called whenever that has changed.
    virtual void watchNetwork(std::function<void()> /*changed*/) {}
};

} // namespace quorvane
