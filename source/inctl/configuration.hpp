// Configuration: a configuration file, loaded and checked at construction, its objects alive between start and
// destruction.
#ifndef INCTL_CONFIGURATION_HPP
#define INCTL_CONFIGURATION_HPP

#include "cs/cs_configuration.h"
#include "cs/cs_status_reporter.h"
#include "inctl/exit_code.hpp"
#include "pb/pb_string.hpp"

#include <string>
#include <string_view>
#include <vector>

struct csRecord;

namespace inctl {

// The path as the library takes it. Throws Failure when it is not UTF-8: another file could be meant.
pb::String pathOf( const std::string &path );

class Configuration {
public:
    // Needs a running Host. Throws Failure with every problem on a line of its own; nothing is started.
    explicit Configuration( std::string path );
    // From memory; name stands for the file in messages.
    Configuration( std::string_view text, const std::string &name );
    ~Configuration();
    Configuration( const Configuration & ) = delete;
    Configuration &operator=( const Configuration & ) = delete;

    void start();

    struct Change {
        std::string name;
        std::string sort;
        std::string what; // CS_CONFIGURATION_CREATED and its kin
    };
    struct Reload {
        std::vector<std::string> problems; // a line each; empty when the file was applied
        std::vector<Change> changes;       // of the records that were touched
    };
    // The file as it is now. With problems everything stays as it was. Not for one from memory.
    Reload reload();

    // For what runs beside the main thread, too: any thread may use it while this lives.
    struct csConfiguration *configuration() const { return configuration_.get(); }
    const std::string &path() const { return path_; }

    struct Object {
        explicit Object( const struct csRecord *record );

        std::string name;
        std::string sort;
        pb::Ref<struct pbObj> object;            // null before start
        pb::Ref<struct csStatusReporter> status; // null for sorts that report nothing
    };
    // In the order of the file.
    std::vector<Object> objects() const;
    // The object of that name, which must be of that sort. Throws Failure with the names there are.
    pb::Ref<struct pbObj> object( const std::string &name, const struct pbSort *sort ) const;

    // The configuration of the record of that name, which must be of that sort; needs no start. Throws Failure likewise.
    pb::Ref<struct pbStore> store( const std::string &name, const struct pbSort *sort ) const;

private:
    [[noreturn]] void failToFind( const std::string &name, const struct pbSort *sort ) const;

    const std::string path_; // "": from memory
    pb::Ref<struct csConfiguration> configuration_;
    bool started_ = false;
};

// What goes with CS_DIAGNOSIS_OF_TEXT and its kin.
Exit exitOf( pbInt origin );
// Throws Failure with the csDiagnoses of a file that was not accepted.
[[noreturn]] void refuse( const pb::Ref<struct pbVector> &diagnoses );

} // namespace inctl

#endif
