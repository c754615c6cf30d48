#pragma once

#include <QString>
#include <string>

namespace quorel::cli {

/// What playing shows: one line that follows the music where standard output is a terminal, else a
/// line for each track. Problems go to standard error.
class PlayView {
  public:
    PlayView();
    ~PlayView(); ///< leaves the terminal's cursor on a line of its own

    /// Times in seconds.
    struct Progress {
        const char* state = "";
        double position = 0;
        double duration = 0;
    };

    void trackStarted(const QString& title, double duration);
    void show(const Progress& progress);
    void problem(const QString& text);

  private:
    void put(const std::string& line);

    const bool isTerminal_;
    QString title_;
    std::string shown_; // on the terminal's last line
};

} // namespace quorel::cli
