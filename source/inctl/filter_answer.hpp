// What a filter of a configuration answers about a peer, after the look-ups of its names.
#ifndef INCTL_FILTER_ANSWER_HPP
#define INCTL_FILTER_ANSWER_HPP

#include "inctl/configuration.hpp"

#include <string>

namespace inctl {

struct FilterQuestion {
    std::string filter;  // the name of its record
    std::string address; // of the peer
    pbInt timeout = 5000; // milliseconds, for all look-ups together
};

struct FilterAnswer {
    pb::Ref<struct pbStore> explanation; // of inFilterExplain
    bool permitted;
    bool complete; // else some names were still looked up when the time was over

    // "permitted: ..." or "refused: ...".
    std::string sentence( const FilterQuestion &question ) const;
};

// Makes the filter and the stack that it names, but no other object of the configuration. Throws Failure.
FilterAnswer askFilter( const Configuration &configuration, const FilterQuestion &question );

} // namespace inctl

#endif
