// Screen: the terminal as a page that is drawn in place, given back as it was on every end of the program that leaves
// time for it.
#ifndef INCTL_SCREEN_HPP
#define INCTL_SCREEN_HPP

#include "inctl/output.hpp"

#include <string>
#include <vector>

namespace inctl {

class Screen {
public:
    struct Size {
        size_t columns, rows;
    };

    // Standard output is a terminal that obeys, this is in front on it, and text is wanted.
    static bool usable( const Output &output );
    // False in the background, where the terminal is the shell's.
    static bool inFront();
    static Size size();

    // Turns to the terminal's other page. One at a time.
    explicit Screen( Output &output );
    // Turns back to what was there before.
    ~Screen();
    Screen( const Screen & ) = delete;
    Screen &operator=( const Screen & ) = delete;

    // In front only: in place of what is shown. Lines that are too long are cut by the terminal.
    void draw( const std::vector<std::string> &lines );
    // Gives the terminal to the shell until the program is continued; where no shell controls it, it goes on at once.
    // The next drawing takes it again. With SIGTSTP blocked.
    void suspend();

private:
    void enter();
    void leave();

    Output &output_;
};

} // namespace inctl

#endif
