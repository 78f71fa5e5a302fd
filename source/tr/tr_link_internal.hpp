// The links between streams that are both there: made by anchors, gone with the first of the two. They are kept whether
// anybody listens or not, so that who comes later can be told what stands; a stream without links costs a pointer.
#ifndef TR_LINK_INTERNAL_HPP
#define TR_LINK_INTERNAL_HPP

#include "pb/pb_monitor.hpp"
#include "pb/pb_string.hpp"

#include <list>
#include <memory>

struct trStream;

namespace tr {

// Guards the links of all streams: they are made and dropped with objects, not with packets. A stream's own monitor may
// be taken with it held.
extern pb::Monitor linksMonitor;

// Both streams outlive it: whichever goes first takes it away.
struct Link {
    const struct trStream *from, *to;
    pbInt kind;
    pb::String annotation; // or null
    std::list<Link>::iterator placeAtFrom{};
    std::list<Link *>::iterator placeAtTo{};
};

struct Links {
    std::list<Link> out;
    std::list<Link *> in;
};

// What a stream holds.
class LinksOwner {
public:
    LinksOwner() = default;
    LinksOwner( const LinksOwner & ) = delete;
    LinksOwner &operator=( const LinksOwner & ) = delete;

    // Takes the links off the streams at their other ends.
    void drop() PB_EXCLUDES( linksMonitor );
    // Null: none.
    const Links *links() const PB_REQUIRES( linksMonitor ) { return links_.get(); }
    Links &make() PB_REQUIRES( linksMonitor );

private:
    std::unique_ptr<Links> links_; // made under the monitor
};

LinksOwner &linksOf( const struct trStream *stream );

// The caller has references to both. A link that stands already is not made again.
void addLink( const struct trStream *from, const struct trStream *to, pbInt kind, const pb::String &annotation )
    PB_EXCLUDES( linksMonitor );

} // namespace tr

#endif
