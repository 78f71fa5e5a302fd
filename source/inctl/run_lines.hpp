// RunLines: a line for each event of a running host, or a record where JSON is wanted.
#ifndef INCTL_RUN_LINES_HPP
#define INCTL_RUN_LINES_HPP

#include "inctl/run_view.hpp"

namespace inctl {

class RunLines final : public RunView {
public:
    // What is given outlives this.
    RunLines( Output &output, const Configuration &configuration, const RunBoard &board )
        : output_( output ), configuration_( configuration ), board_( board )
    {
    }

    void states( const std::vector<ObjectState> &changes ) override;
    void reloaded( const std::vector<Configuration::Change> &changes ) override;
    // The problems go to standard error, as those of a file that is refused at the start.
    void refused( const RunBoard::Refusal &refusal ) override;
    void unwatched( const std::string &problem ) override;
    void ending( std::chrono::milliseconds elapsed ) override;

private:
    void measure();
    void showState( const ObjectState &state );

    Output &output_;
    const Configuration &configuration_;
    const RunBoard &board_;
    size_t nameWidth_ = 0;
    size_t sortWidth_ = 0;
};

} // namespace inctl

#endif
