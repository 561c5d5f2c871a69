#pragma once

#include <QString>

#include <filesystem>
#include <functional>

namespace quorvane {

/// A passing notice, and what it speaks of: a click opens that.
struct Notice {
    enum class About { window, review, trash };

    QString title;
    QString text;
    About about = About::window;
};

/// What the state model asks of the person's desktop. Called on the main thread; none of it blocks
/// or throws: a desktop that lacks something leaves it out.
class Desktop {
  public:
    virtual ~Desktop() = default;

    virtual void notify(const Notice& notice) = 0;
    /// A notice was clicked. Set before the first; where nobody can tell, it is never called.
    std::function<void(Notice::About)> onNoticeOpened;

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
