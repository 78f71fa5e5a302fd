// pb::ObserverSet: what a signal or an alert wakes, each object once, by identity. Few observers are searched one after
// the other; many get an index, since thousands of channels may observe one stack. In-tree only.
#ifndef PB_OBSERVER_SET_HPP
#define PB_OBSERVER_SET_HPP

#include "pb/pb_object.hpp"

#include <algorithm>
#include <memory>
#include <unordered_map>
#include <vector>

namespace pb {

class ObserverSet {
public:
    void add( const pbObj *observer )
    {
        if ( find( observer ) < observers_.size() )
            return;
        observers_.push_back( share( observer ) );
        if ( index_ )
            index_->emplace( observer, observers_.size() - 1 );
        else if ( observers_.size() > searched )
            makeIndex();
    }

    // The reference that was kept, or null; to be dropped when no lock is held, since it may be the last one.
    [[nodiscard]] Ref<pbObj> remove( const pbObj *observer )
    {
        const size_t place = find( observer );
        if ( place == observers_.size() )
            return {};
        std::swap( observers_[place], observers_.back() );
        Ref<pbObj> removed = std::move( observers_.back() );
        observers_.pop_back();
        if ( index_ ) {
            index_->erase( observer );
            if ( place < observers_.size() )
                ( *index_ )[observers_[place].get()] = place;
            if ( observers_.size() < searched / 2 )
                index_.reset();
        }
        return removed;
    }

    auto begin() const noexcept { return observers_.begin(); }
    auto end() const noexcept { return observers_.end(); }

private:
    using Index = std::unordered_map<const pbObj *, size_t>;
    static constexpr size_t searched = 16;

    void makeIndex()
    {
        index_ = std::make_unique<Index>();
        for ( size_t place = 0; place < observers_.size(); ++place )
            index_->emplace( observers_[place].get(), place );
    }

    // The place of the observer, or the number of observers.
    size_t find( const pbObj *observer ) const
    {
        if ( index_ ) {
            const auto found = index_->find( observer );
            return found == index_->end() ? observers_.size() : found->second;
        }
        const auto found = std::find_if( observers_.begin(), observers_.end(),
                                         [=]( const Ref<pbObj> &each ) { return each.get() == observer; } );
        return static_cast<size_t>( found - observers_.begin() );
    }

    std::vector<Ref<pbObj>> observers_;
    std::unique_ptr<Index> index_; // once there are many
};

} // namespace pb

#endif
