// SPDX-License-Identifier: Apache-2.0
// The service by sd-bus, with typed arguments: on a socket between the two processes, or through a daemon.
#include <sys/prctl.h>
#include <sys/socket.h>
#include <systemd/sd-bus.h>
#include <unistd.h>

#include <csignal>
#include <string>
#include <vector>

#include "contender.h"
#include "detail.h"
#include "sockets.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Bench {

namespace {

constexpr const char* PATH = "/indicator";
constexpr const char* INTERFACE = "qnl.Indicator";
constexpr const char* NAME = "qnl.Indicator";
constexpr const char* RECORD = "siixxxiiu";
constexpr const char* RECORD_STRUCT = "(siixxxiiu)";

void Check(int result, const char* what)
{
    if (result < 0) {
        Fail(std::string("sd-bus: ") + what);
    }
}

int OnCall(sd_bus_message* request, void* /* data */, sd_bus_error* /* error */)
{
    int32_t sensor = 0;
    int32_t animation = 0;
    Check(sd_bus_message_read(request, "ii", &sensor, &animation), "arguments");
    return sd_bus_reply_method_return(request, "i", 0);
}

int OnQuery(sd_bus_message* request, void* /* data */, sd_bus_error* /* error */)
{
    int32_t count = 0;
    sd_bus_message* reply = nullptr;
    Check(sd_bus_message_read(request, "i", &count), "arguments");
    Check(sd_bus_message_new_method_return(request, &reply), "reply");
    Check(sd_bus_message_append(reply, "i", 0), "reply");
    Check(sd_bus_message_open_container(reply, 'a', RECORD_STRUCT), "reply");
    for (int32_t i = 0; i < count; ++i) {
        const Detail& detail = AllDetails()[static_cast<size_t>(i)];
        Check(sd_bus_message_append(reply, RECORD_STRUCT, detail.bundleName.c_str(), detail.uid, detail.sensor,
                  detail.begin, detail.realEnd, detail.shownEnd, detail.realState, detail.shownState, detail.flags),
            "record");
    }
    Check(sd_bus_message_close_container(reply), "reply");
    const int result = sd_bus_send(nullptr, reply, nullptr);
    sd_bus_message_unref(reply);
    return result;
}

const sd_bus_vtable METHODS[] = {
    SD_BUS_VTABLE_START(0),
    SD_BUS_METHOD("TurnOffIndicator", "ii", "i", OnCall, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_METHOD("GetPrivacyEventDetails", "i", "ia(siixxxiiu)", OnQuery, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_VTABLE_END,
};

/** Serves on a bus until its other end is gone. */
void ServeBus(sd_bus* bus)
{
    while (true) {
        const int result = sd_bus_process(bus, nullptr);
        if (result < 0 || (result == 0 && sd_bus_wait(bus, UINT64_MAX) < 0)) {
            return;
        }
    }
}

class SdBus : public Contender {
public:
    using Contender::Contender;

    void Call() override
    {
        sd_bus_error error = SD_BUS_ERROR_NULL;
        sd_bus_message* reply = nullptr;
        int32_t result = -1;
        Check(sd_bus_call_method(Bus(), destination_, PATH, INTERFACE, "TurnOffIndicator", &error, &reply, "ii", 0, 1),
            "call");
        if (sd_bus_message_read(reply, "i", &result) < 0 || result != 0) {
            Fail("sd-bus: wrong answer");
        }
        sd_bus_message_unref(reply);
    }

    void Query(int32_t records) override
    {
        sd_bus_error error = SD_BUS_ERROR_NULL;
        sd_bus_message* reply = nullptr;
        int32_t result = -1;
        Check(sd_bus_call_method(
                  Bus(), destination_, PATH, INTERFACE, "GetPrivacyEventDetails", &error, &reply, "i", records),
            "query");
        Check(sd_bus_message_read(reply, "i", &result), "result");
        Check(sd_bus_message_enter_container(reply, 'a', RECORD_STRUCT), "records");
        std::vector<Detail> details;
        while (sd_bus_message_enter_container(reply, 'r', RECORD) > 0) {
            const char* name = nullptr;
            Detail detail;
            Check(sd_bus_message_read(reply, RECORD, &name, &detail.uid, &detail.sensor, &detail.begin, &detail.realEnd,
                      &detail.shownEnd, &detail.realState, &detail.shownState, &detail.flags),
                "record");
            detail.bundleName = name;
            details.push_back(std::move(detail));
            sd_bus_message_exit_container(reply);
        }
        sd_bus_message_unref(reply);
        if (details.size() != static_cast<size_t>(records)) {
            Fail("sd-bus: wrong number of records");
        }
    }

protected:
    const char* destination_ = nullptr;

private:
    virtual sd_bus* Open() const = 0;

    sd_bus* Bus()
    {
        thread_local sd_bus* const bus = Open();
        return bus;
    }
};

class DirectSdBus : public SdBus {
public:
    DirectSdBus() : SdBus("sd-bus, direct"), address_(Address("sd-bus")) {}

    void Serve(const std::function<void()>& ready) override
    {
        const int listener = Listen(SOCK_STREAM, address_);
        ready();
        ServeEach(listener, [](int fd) {
            sd_bus* bus = nullptr;
            sd_id128_t id{};
            sd_id128_randomize(&id);
            Check(sd_bus_new(&bus), "new");
            Check(sd_bus_set_fd(bus, fd, fd), "fd");
            Check(sd_bus_set_server(bus, 1, id), "server");
            Check(sd_bus_set_anonymous(bus, 1), "anonymous");
            Check(sd_bus_start(bus), "start");
            Check(sd_bus_add_object_vtable(bus, nullptr, PATH, INTERFACE, METHODS, nullptr), "methods");
            ServeBus(bus);
            sd_bus_unref(bus);
        });
    }

private:
    sd_bus* Open() const override
    {
        sd_bus* bus = nullptr;
        Check(sd_bus_new(&bus), "new");
        Check(sd_bus_set_address(bus, ("unix:abstract=" + address_).c_str()), "address");
        Check(sd_bus_start(bus), "start");
        return bus;
    }

    const std::string address_;
};

class DaemonSdBus : public SdBus {
public:
    DaemonSdBus() : SdBus("sd-bus, by a daemon"), address_("unix:abstract=" + Address("daemon"))
    {
        destination_ = NAME;
        int started[2];
        char byte = 0;
        if (pipe(started) != 0) {
            Fail("no pipe");
        }
        daemon_ = fork();
        if (daemon_ == 0) {
            prctl(PR_SET_PDEATHSIG, SIGKILL);
            const std::string address = "--address=" + address_;
            const std::string print = "--print-address=" + std::to_string(started[1]);
            execlp("dbus-daemon", "dbus-daemon", "--session", "--nofork", "--nopidfile", "--nosyslog", address.c_str(),
                print.c_str(), nullptr);
            _exit(127);
        }
        close(started[1]);
        if (read(started[0], &byte, 1) != 1) {
            Fail("dbus-daemon does not start");
        }
    }

    int Daemon() const override { return daemon_; }

    void Serve(const std::function<void()>& ready) override
    {
        sd_bus* bus = Open();
        Check(sd_bus_add_object_vtable(bus, nullptr, PATH, INTERFACE, METHODS, nullptr), "methods");
        Check(sd_bus_request_name(bus, NAME, 0), "name");
        ready();
        ServeBus(bus);
    }

private:
    sd_bus* Open() const override
    {
        sd_bus* bus = nullptr;
        Check(sd_bus_new(&bus), "new");
        Check(sd_bus_set_address(bus, address_.c_str()), "address");
        Check(sd_bus_set_bus_client(bus, 1), "client");
        Check(sd_bus_start(bus), "start");
        return bus;
    }

    const std::string address_;
    pid_t daemon_ = 0;
};

} // namespace

std::unique_ptr<Contender> MakeDirectSdBus() { return std::make_unique<DirectSdBus>(); }

std::unique_ptr<Contender> MakeDaemonSdBus() { return std::make_unique<DaemonSdBus>(); }

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Bench
