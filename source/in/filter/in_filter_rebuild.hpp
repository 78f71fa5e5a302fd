// FilterRebuild: the making of a filter's next list, which may take as long as DNS does. One for each filter, idle or
// under way. It has no lock: the filter's region guards it. In-tree only.
#ifndef IN_FILTER_REBUILD_HPP
#define IN_FILTER_REBUILD_HPP

#include "in/filter/in_filter_list.hpp"
#include "pb/pb_dict.h"

#include <deque>
#include <memory>
#include <string>
#include <vector>

struct inDnsQueryAddresses;
struct inDnsQuerySrv;
struct inFilterEntry;
struct inStack;
struct pbSignalable;
struct trAnchor;
struct trStream;

namespace in {

class FilterRebuild {
public:
    using Options = pb::Ref<struct inFilterOptions>;
    using Stack = pb::Ref<struct inStack>; // or null: what must be asked for is left out
    // What is over, to be dropped by the caller when it has left the region: the last reference may end a query.
    using Dropped = std::vector<pb::Ref<struct pbObj>>;

    // The trace of the filter; signalled when a query ends.
    FilterRebuild( pb::Ref<struct trStream> filterTrace, pb::Ref<struct pbSignalable> signalable );

    // Asks for all that the entries name. One that is under way is abandoned.
    void start( const Options &options, const Stack &stack, Dropped &dropped );
    bool isUnderWay() const { return buildRebuilding; }
    // Takes the answers of the queries that have ended. The stack is asked for the targets of services.
    void collect( const Stack &stack, Dropped &dropped );
    bool isPending() const;
    // The list, when nothing is pending any more. Idle afterwards.
    std::shared_ptr<const FilterList> finish( Dropped &dropped );

    // That what belongs to a rebuild is there together or not at all.
    void assertBuild() const { assertBuild( this ); }

private:
    using Dict = pb::Ref<struct pbDict>;

    static void assertBuild( const FilterRebuild *imp );
    void drop( Dropped &dropped );

    // Of one entry, when a rebuild starts.
    void addHost( pbInt index, const struct inFilterEntry *entry );
    void askForHost( pbInt index, const struct inFilterEntry *entry, const Stack &stack );
    void askForServices( pbInt index, const struct inFilterEntry *entry, const Stack &stack );

    void askForAddresses( pbInt index, const pb::String &name, const Stack &stack );
    void askForTargets( const Stack &stack );
    void takeServices( pbInt index, const struct inDnsQuerySrv *query );
    void takeAddresses( pbInt index, const struct inDnsQueryAddresses *query );
    void append( pbInt index, const struct inFilterEntry *entry, const struct inAddress *address,
                 const pb::String &name );
    void note( pbInt index, const pb::String &name, std::string text );
    void noteUnlessAddress( pbInt index, const pb::String &name, const char *text );
    pb::Ref<struct inFilterEntry> entryAt( pbInt index ) const;
    pb::Ref<struct trAnchor> anchor() const;

    const pb::Ref<struct trStream> filterTrace_;
    const pb::Ref<struct pbSignalable> signalable_;

    // While one is under way, together or not at all. The queries' values are the places of their entries.
    bool buildRebuilding = false;
    Options buildOptions;
    pb::Ref<struct trStream> buildTrace;
    pb::Ref<struct pbVector> buildAddressesVector;
    pb::Ref<struct pbVector> buildMatchingBitsVector;
    Dict buildDnsQueryAddressesDict;
    Dict buildDnsQuerySrvDict;
    std::deque<std::pair<pbInt, pb::String>> buildTargets; // of services, not asked for yet, with the places of entries
    std::vector<FilterFindings::Source> buildSources;
    std::vector<FilterFindings::Note> buildNotes;
};

} // namespace in

#endif
