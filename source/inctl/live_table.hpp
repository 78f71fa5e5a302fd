// LiveTable: the states of a running host as a table on the terminal, redrawn in place.
#ifndef INCTL_LIVE_TABLE_HPP
#define INCTL_LIVE_TABLE_HPP

#include "inctl/run_view.hpp"
#include "inctl/screen.hpp"
#include "inctl/state_page.hpp"

namespace inctl {

class LiveTable final : public RunView {
public:
    // What is given outlives this.
    LiveTable( Output &output, const Configuration &configuration, const RunBoard &board );

    void states( const std::vector<ObjectState> &changes ) override;
    void reloaded( const std::vector<Configuration::Change> &changes ) override;
    void refused( const RunBoard::Refusal &refusal ) override;
    void unwatched( const std::string &problem ) override;
    // Leaves the last table behind, on the page that was there before.
    void ending( std::chrono::milliseconds elapsed ) override;

    void resized() override { touch(); }
    void suspend() override;
    std::optional<Clock::time_point> next() const override { return next_; }
    void show() override;

private:
    void touch();
    std::string shown( const PageLine &line ) const;

    Output &output_;
    const Configuration &configuration_;
    const RunBoard &board_;
    std::optional<Screen> screen_;
    std::string warning_, footer_;
    std::optional<Clock::time_point> next_; // when to draw, while something is new
    Clock::time_point drawn_;
};

} // namespace inctl

#endif
