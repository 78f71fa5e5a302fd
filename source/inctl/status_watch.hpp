// StatusWatch: what the objects of a configuration say of their state, and what has changed since the last look.
#ifndef INCTL_STATUS_WATCH_HPP
#define INCTL_STATUS_WATCH_HPP

#include "inctl/configuration.hpp"
#include "inctl/output.hpp"
#include "inctl/waiter.hpp"

#include <optional>
#include <string>
#include <vector>

namespace inctl {

class StatusWatch {
public:
    // The configuration has been started; configuration and waiter outlive this.
    StatusWatch( const Configuration &configuration, const Waiter &waiter );
    ~StatusWatch();
    StatusWatch( const StatusWatch & ) = delete;
    StatusWatch &operator=( const StatusWatch & ) = delete;

    // A line or record for every object that has changed; at the first call, for every object.
    void showChanges( Output &output );

private:
    struct Watched {
        Configuration::Object object;
        bool shown = false;
        bool up = false;
        pb::Ref<struct pbStore> items;
    };

    bool look( Watched &watched ) const;
    void show( Output &output, const Watched &watched ) const;

    const Waiter &waiter_;
    std::vector<Watched> watched_;
    size_t nameWidth_ = 0;
    size_t sortWidth_ = 0;
};

} // namespace inctl

#endif
