// ObjectState: how an object of a configuration fares, as plain data that a table, lines, records and clients show.
#ifndef INCTL_OBJECT_STATE_HPP
#define INCTL_OBJECT_STATE_HPP

#include "inctl/configuration.hpp"
#include "inctl/output.hpp"
#include "inctl/record.hpp"

#include <string>

namespace inctl {

struct ObjectState {
    std::string name;
    std::string sort;
    const char *state = ""; // "up", "down", "ready" for a sort that reports nothing, "not created"
    bool good = false;
    std::string reason;   // why it is not good, and what else a person should look at; often empty
    std::string items;    // the other items of its status, "KEY=value  KEY=value"
    bool created = false; // the object exists
    bool up = false;      // as its status says; false without one
    pb::Ref<struct pbStore> reported; // all items of its status; null for a sort that reports nothing

    bool operator==( const ObjectState & ) const = default;

    Paint paint() const { return good ? Paint::Good : Paint::Bad; }
    // Reason and items, on one line and without control characters.
    std::string detail() const;
    // Adds the keys "name", "sort", "created", and of its status "up", "items", "reason".
    Record record( Record begun = {} ) const;
};

ObjectState objectState( const Configuration::Object &object );

// Control characters become "?": what comes from outside is not to steer a terminal.
std::string printable( std::string text );

} // namespace inctl

#endif
