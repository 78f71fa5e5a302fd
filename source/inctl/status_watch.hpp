// StatusWatch: how the objects of a configuration fare, and what has changed since the last look; follows re-loads.
#ifndef INCTL_STATUS_WATCH_HPP
#define INCTL_STATUS_WATCH_HPP

#include "inctl/configuration.hpp"
#include "inctl/object_state.hpp"
#include "inctl/waiter.hpp"

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

    // Looks at every object; the states that have changed, at the first look all of them.
    std::vector<ObjectState> changes();
    // As of the last look, in the order of the file.
    std::vector<ObjectState> states() const;

private:
    struct Watched {
        Configuration::Object object;
        ObjectState state;
        bool fresh = true; // not looked at yet
    };

    void follow();
    void attach( const Watched &watched ) const;
    void detach( const Watched &watched ) const;

    const Configuration &configuration_;
    const Waiter &waiter_;
    std::vector<Watched> watched_;
};

} // namespace inctl

#endif
