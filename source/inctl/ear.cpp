// Ear: the two kinds of sockets that are listened to.
#include "inctl/ear.hpp"

namespace inctl {
namespace {

class ChannelEar final : public Ear {
public:
    ChannelEar( pb::Ref<struct inUdpChannel> channel, const Waiter &waiter )
        : channel_( std::move( channel ) ), waiter_( waiter )
    {
        inUdpChannelReceiveAddAlertable( channel_.get(), waiter.alertable() );
        inUdpChannelErrorAddSignalable( channel_.get(), waiter.signalable() );
    }
    ~ChannelEar() override
    {
        inUdpChannelReceiveDelAlertable( channel_.get(), waiter_.alertable() );
        inUdpChannelErrorDelSignalable( channel_.get(), waiter_.signalable() );
    }
    pb::Ref<struct inUdpPacket> receive() override { return pb::adopt( inUdpChannelReceive( channel_.get() ) ); }
    bool failed() const override { return inUdpChannelError( channel_.get() ); }
    pb::Ref<struct inUdpAddress> local() const override
    {
        return pb::adopt( inUdpChannelLocalAddress( channel_.get() ) );
    }
    void send( const struct inUdpPacket *packet ) override { inUdpChannelSend( channel_.get(), packet ); }

private:
    const pb::Ref<struct inUdpChannel> channel_;
    const Waiter &waiter_;
};

class GroupEar final : public Ear {
public:
    GroupEar( pb::Ref<struct inUdpMulticastReceiver> receiver, const Waiter &waiter )
        : receiver_( std::move( receiver ) ), waiter_( waiter )
    {
        inUdpMulticastReceiverReceiveAddAlertable( receiver_.get(), waiter.alertable() );
        inUdpMulticastReceiverErrorAddSignalable( receiver_.get(), waiter.signalable() );
    }
    ~GroupEar() override
    {
        inUdpMulticastReceiverReceiveDelAlertable( receiver_.get(), waiter_.alertable() );
        inUdpMulticastReceiverErrorDelSignalable( receiver_.get(), waiter_.signalable() );
    }
    pb::Ref<struct inUdpPacket> receive() override
    {
        return pb::adopt( inUdpMulticastReceiverReceive( receiver_.get() ) );
    }
    bool failed() const override { return inUdpMulticastReceiverError( receiver_.get() ); }
    pb::Ref<struct inUdpAddress> local() const override
    {
        return pb::adopt( inUdpMulticastReceiverLocalAddress( receiver_.get() ) );
    }
    void send( const struct inUdpPacket * ) override {}

private:
    const pb::Ref<struct inUdpMulticastReceiver> receiver_;
    const Waiter &waiter_;
};

} // namespace

std::unique_ptr<Ear> makeEar( pb::Ref<struct inUdpChannel> channel, const Waiter &waiter )
{
    return std::make_unique<ChannelEar>( std::move( channel ), waiter );
}

std::unique_ptr<Ear> makeEar( pb::Ref<struct inUdpMulticastReceiver> receiver, const Waiter &waiter )
{
    return std::make_unique<GroupEar>( std::move( receiver ), waiter );
}

} // namespace inctl
