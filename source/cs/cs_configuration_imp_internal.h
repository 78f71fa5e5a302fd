// The object behind csConfiguration: its records with their live objects, and the text that they come from.
#ifndef CS_CONFIGURATION_IMP_INTERNAL_H
#define CS_CONFIGURATION_IMP_INTERNAL_H

#include "cs/cs_configuration.h"
#include "cs/cs_configuration_internal.h"
#include "cs/cs_records_change_internal.h"
#include "cs/cs_turn_internal.h"
#include "pb/pb_signal.h"
#include "tr/tr_stream.h"

PB_SORT_DECLARE( cs___sort_CS_CONFIGURATION )

namespace cs {

// What a configuration was read from or saved to last. Immutable.
struct Source {
    std::string path;          // as given; empty: from memory
    std::string canonicalPath; // without symbolic links, then
    std::string text;
    pb::Ref<struct pbStore> modules; // "modules" as the updates left it
};

// A configuration that was read: what a csConfiguration is made of.
struct Loaded {
    LiveRecords records; // without objects
    std::shared_ptr<const Source> source;
};
std::string canonicalPath( const std::string &path ); // the path itself when there is no such file
Loaded loadedFrom( ParsedConfiguration parsed, const std::string &path, std::string text );

} // namespace cs

struct csConfiguration final : pb::Object<struct csConfiguration, cs___sort_CS_CONFIGURATION> {
    explicit csConfiguration( cs::Loaded loaded );
    ~csConfiguration();

    // Each takes the turn.
    void start();
    void stop();
    void apply( const cs::Loaded &next, struct pbVector **optionalChanges );
    void applyNow( const cs::Loaded &next, struct pbVector **optionalChanges ) PB_REQUIRES( turn );
    pb::Ref<struct pbStore> tree();
    std::string trySave( const struct pbString *path ); // empty, or what went wrong

    cs::Loaded current() const;
    cs::LiveRecords currentRecords() const { return current().records; }

    // Fixed.
    const pb::Ref<struct trStream> stream;
    // Of whoever has the turn. It is taken around calls into sorts; the monitor never is.
    cs::Turn turn;
    bool started PB_GUARDED_BY( turn ) = false;
    // Changed by whoever has the turn, read by everybody.
    mutable pb::Monitor monitor;
    cs::LiveRecords records PB_GUARDED_BY( monitor ); // in the order of the file
    std::shared_ptr<const cs::Source> source PB_GUARDED_BY( monitor );
    pb::Ref<struct pbSignal> update PB_GUARDED_BY( monitor ) = pb::adopt( pbSignalCreate() );

private:
    void publish( cs::LiveRecords next, std::shared_ptr<const cs::Source> nextSource ) PB_REQUIRES( turn );
    void makeLive( const cs::LiveRecords &next, struct pbVector **optionalChanges ) PB_REQUIRES( turn );
};

#endif
