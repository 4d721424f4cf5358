#include "firmware/BraxWindows.h"

#include <gtest/gtest.h>

#include <fstream>
#include <thread>

#include "common/SmhiException.h"
#include "firmware/DeviceSocket.h"
#include "firmware/SyncObjectWin.h"
#include "platform/posix/Device.h"
#include "sensors/ExpectThrow.h"

namespace tavoren {
namespace {

using std::chrono::milliseconds;

const ByteString controlAnswer{1, 0, 0, 0, 0, 0};

template <typename Action>
std::string failureOf(Action action) {
    return textOf<SmhiException>(action);
}

/// A device and a channel that is connected to it; its waits are short.
class ConnectedBrax : public testing::Test {
  protected:
    ConnectedBrax() { connect(); }
    void connect() {
        std::thread other([this] { greeting = device.accept(controlAnswer); });
        brax.Connect();
        other.join();
    }
    /// What reading gives when the device sends this.
    std::string readFailure(const ByteString& packet) {
        device.send(packet);
        const std::string text = failureOf([this] { brax.Read(4000); });
        EXPECT_EQ(failureOf([this] { brax.Read(4000); }), "SMHI Error: Invalid device handle");
        connect();
        return text;
    }

    WorkingFolder folder;
    DeviceSocket device{"hub"};
    BraxWindows brax{milliseconds(30)};
    ByteString greeting;
};

TEST_F(ConnectedBrax, CarriesMessagesBothWays) {
    EXPECT_EQ(greeting, (ByteString{1,    0x04, 0xE0, 0x00, 0x80, 0x2E, 0x9A, 0x57, 0xBB, 0x54, 0xCC,
                                    0x50, 0x44, 0xB1, 0xD0, 0x5E, 0x75, 0x20, 0xDC, 0xAD, 0x25}));
    brax.Connect();  // stays as it is
    EXPECT_FALSE(device.hasCaller());
    brax.Write({7, 8, 9});
    EXPECT_EQ(device.receive(), (ByteString{2, 7, 8, 9}));
    const ByteString longest(65567, 5);
    std::thread other([&] { EXPECT_EQ(device.receive().size(), 65568U); });
    brax.Write(longest);
    other.join();
    ByteString packet(4001, 6);
    packet[0] = 2;
    device.send({2});
    device.send(packet);
    EXPECT_TRUE(brax.Read(4000).empty());
    EXPECT_EQ(brax.Read(4000), ByteString(4000, 6));
    brax.Close();
    brax.Close();
    EXPECT_TRUE(device.receive().empty());
    EXPECT_EQ(failureOf([this] { brax.Write({1}); }), "SMHI Error: Invalid device handle");
}

TEST_F(ConnectedBrax, EveryFailureOfATransferClosesTheChannel) {
    const std::string timedOut = "SMHI Error: Failed to read from device, timed out";
    ByteString tooLong(4002, 6);
    tooLong[0] = 2;
    for (const ByteString& packet : {tooLong, ByteString{3, 31, 0, 0, 0}, ByteString{3}, ByteString{3, 0, 0, 0, 0},
                                     ByteString{3, 0xE5, 3, 0, 0}, ByteString{1, 2}, ByteString{9}})
        EXPECT_EQ(readFailure(packet), timedOut);
    EXPECT_EQ(failureOf([this] { brax.Read(4000); }), timedOut);  // silence
    connect();
    device.hangUp();
    EXPECT_EQ(failureOf([this] { brax.Read(4000); }), timedOut);
    connect();
    device.hangUp();
    EXPECT_EQ(failureOf([this] { brax.Write({1}); }), "SMHI Error: Failed to write to device");
    connect();
    std::string full = "(nothing thrown)";
    while (full == "(nothing thrown)")
        full = failureOf([this] { brax.Write(ByteString(60000)); });
    EXPECT_EQ(full, "SMHI Error: Failed to write to device, timed out");
}

TEST_F(ConnectedBrax, AWaitThatIsGivenUpLeavesNothingBehind) {
    EXPECT_EQ(failureOf([this] { brax.Read(4000); }), "SMHI Error: Failed to read from device, timed out");
    device.send({2, 1});  // too late, and to a connection that is gone
    connect();
    device.send({2, 3});
    EXPECT_EQ(brax.Read(10), ByteString{3});
}

TEST(BraxWindows, OnlyTheFirstPresentDeviceIsOpened) {
    const WorkingFolder folder;
    BraxWindows brax;
    const std::string none = "SMHI Error: Failed to enumerate device interfaces";
    EXPECT_EQ(failureOf([&] { brax.Connect(); }), none);
    std::filesystem::create_directory("devices");
    std::ofstream("devices/{00000000-308F-4DAA-A2B9-2782D4703C5D}.hub") << "another class";
    EXPECT_EQ(failureOf([&] { brax.Connect(); }), none);
    DeviceSocket second("hub2");
    DeviceSocket first("hub1");
    std::thread other([&] { first.accept(controlAnswer); });
    brax.Connect();
    other.join();
    brax.Close();
    const std::string guid = "{AA1DCD67-308F-4DAA-A2B9-2782D4703C5D}.";
    std::ofstream("devices/" + guid + std::string(61, 'a')) << "a path of 108 bytes";
    EXPECT_EQ(failureOf([&] { brax.Connect(); }), "SMHI Error: Failed to create device handle");
    EXPECT_EQ(GetLastError(), ERROR_FILENAME_EXCED_RANGE);
    std::ofstream("devices/" + guid + "_") << "no socket";
    EXPECT_EQ(failureOf([&] { brax.Connect(); }), "SMHI Error: Failed to create device handle");
    EXPECT_FALSE(second.hasCaller());
    EXPECT_EQ(failureOf([&] { brax.Read(1); }), "SMHI Error: Invalid device handle");
}

TEST(BraxWindows, ADeviceThatDoesNotBindIsLeft) {
    const WorkingFolder folder;
    DeviceSocket device("hub");
    BraxWindows brax;
    const std::string failed = "SMHI Error: Failed to connect to client";
    for (const ByteString& answer : {ByteString{3, 5, 0, 0, 0}, ByteString{2, 1}, ByteString{1, 0, 0, 0, 0, 0, 0}}) {
        std::thread other([&] { device.accept(answer); });
        EXPECT_EQ(failureOf([&] { brax.Connect(); }), failed);
        other.join();
    }
}

TEST(PlatformCalls, RefuseWhatIsNoHandle) {
    HANDLE const event = CreateEventW(nullptr, FALSE, TRUE, nullptr);
    EXPECT_EQ(WaitForSingleObject(event, 0), WAIT_OBJECT_0);
    EXPECT_EQ(WaitForSingleObject(event, 0), WAIT_TIMEOUT);  // it resets itself
    EXPECT_EQ(ReadFile(event, nullptr, 0, nullptr, nullptr), FALSE);
    EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
    EXPECT_EQ(CloseHandle(event), TRUE);
    EXPECT_EQ(SetEvent(event), FALSE);
    EXPECT_EQ(WaitForSingleObject(event, 0), WAIT_FAILED);
    EXPECT_EQ(CloseHandle(INVALID_HANDLE_VALUE), FALSE);
    EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
}

TEST(SyncObjectWin, StaysSetUntilItIsReset) {
    SyncObjectWin done;
    std::thread other([&done] { done.set(); });
    done.wait();
    other.join();
    done.wait();
    done.reset();
    done.set();
    done.wait();
}

}  // namespace
}  // namespace tavoren
