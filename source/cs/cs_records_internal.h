// The live objects of all running configurations by record name, and the watches that follow a name.
#ifndef CS_RECORDS_INTERNAL_H
#define CS_RECORDS_INTERNAL_H

#include "pb/pb_monitor.hpp"
#include "pb/pb_object.hpp"
#include "pb/pb_signal.h"

#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

struct pbSignalable;

namespace cs {

class Watch;

// One monitor for all names and watches: a leaf, under which signals are asserted and nothing is called. References
// that become unused under it are dropped after it.
class Records {
public:
    static Records &instance();

    // A configuration's record has the object from now on; watches of its name and sort have been signalled on return.
    // Where several running configurations have the name, the one that appeared first stands.
    void appear( const std::string &name, const pb::Ref<struct pbObj> &obj );
    void go( const std::string &name, const pb::Ref<struct pbObj> &obj );
    // Signals the watches that follow the value of the object.
    void valueChanged( const struct pbObj *obj );

private:
    friend class Watch;
    using Dropped = std::vector<pb::Ref<struct pbObj>>;

    void resolveWatches( const std::string &name, Dropped &dropped ) PB_REQUIRES( monitor );
    pb::Ref<struct pbObj> find( const std::string &name, const struct pbSort *sort ) const PB_REQUIRES( monitor );

    static inline pb::Monitor monitor{ 0 };
    std::multimap<std::string, pb::Ref<struct pbObj>> objects PB_GUARDED_BY( monitor );
    std::set<std::pair<std::string, Watch *>> watches PB_GUARDED_BY( monitor ); // by the name that they follow
    std::set<std::pair<const struct pbObj *, Watch *>> followers PB_GUARDED_BY( monitor ); // by the object of the value
};

// What an observer follows: an object that is given, else the one behind a name.
class Watch {
public:
    enum class Follows { Object, Value };

    Watch( const struct pbSort *sort, Follows follows ) : sort_( sort ), follows_( follows ) {}
    Watch( const Watch & ) = delete;
    Watch &operator=( const Watch & ) = delete;
    ~Watch() { configure( "", nullptr ); }

    const struct pbSort *sort() const noexcept { return sort_; }
    void configure( const std::string &optionalName, pb::Ref<struct pbObj> optionalGiven );
    struct State {
        bool configured;
        pb::Ref<struct pbObj> object; // or null
    };
    State state() const;
    void addSignalable( struct pbSignalable *signalable );
    void delSignalable( struct pbSignalable *signalable );

private:
    friend class Records;

    void resolve( Records::Dropped &dropped ) PB_REQUIRES( Records::monitor );
    void changed( Records::Dropped &dropped ) PB_REQUIRES( Records::monitor );

    const struct pbSort *const sort_;
    const Follows follows_;
    std::string name_ PB_GUARDED_BY( Records::monitor );
    pb::Ref<struct pbObj> given_ PB_GUARDED_BY( Records::monitor );
    pb::Ref<struct pbObj> object_ PB_GUARDED_BY( Records::monitor ); // in effect
    pb::Ref<struct pbSignal> update_ PB_GUARDED_BY( Records::monitor ) = pb::adopt( pbSignalCreate() );
};

} // namespace cs

#endif
