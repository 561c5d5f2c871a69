#pragma once

#include "foundation/Guarded.h"
#include "foundation/Publisher.h"

#include <QString>

namespace quorvane {

/// The one writer of console lines, so that whole lines, the live progress line and
/// machine-readable output never tear each other, and nothing that a terminal would obey reaches it
/// from outside. Any thread.
class Console {
  public:
    enum class Channel {
        standardOutput,
        standardError, ///< standard output is left to machine-readable objects
        silent,
    };

    explicit Console(Channel channel = Channel::standardOutput);
    ~Console();
    Console(const Console&) = delete;
    Console& operator=(const Console&) = delete;

    void setChannel(Channel channel);

    /// Calm: on a terminal a step is not written, and of notices so many as a person reads; the
    /// log has all. Begins to count anew.
    void setCalm(bool calm);

    /// Writes one line, a step of the work; the live line, if shown, moves below it.
    void print(const QString& line);

    /// The same for what needs a person; `about` is the identifier of the asset that it speaks of.
    void notice(const QString& line, const QString& about = {});
    /// The same of a line that is told in the log as well.
    void noticeOfLog(const QString& line);

    struct Notice {
        QString line;
        QString about;
    };
    /// What `notice` was given, on the caller's thread.
    Publisher<Notice> notices;

    /// Writes to standard output whatever the channel is: results, tables, JSON objects.
    void result(const QString& text);

    /// Writes one line to standard error whatever the channel is.
    void error(const QString& line);

    /// Shows `text` as the live line at the bottom of the terminal, replacing the last one.
    /// An empty text removes it. Without a terminal on the channel's stream nothing is shown.
    void setLiveLine(const QString& text);

    /// True when the console lines go to a terminal.
    bool isTerminal() const;

  private:
    struct State {
        Channel channel;
        bool isCalm = false;
        int notices = 0; ///< since calm was asked for
        QString liveLine = {};
    };
    static bool writesCalmly(const State& state);
    static void write(const State& state, int fd, const QString& text);

    Guarded<State> state_; ///< locked also while something is written
};

} // namespace quorvane
