// SPDX-License-Identifier: Apache-2.0
#include <grpcpp/grpcpp.h>

#include <memory>
#include <string>

#include "contender.h"
#include "detail.h"
#include "indicator.grpc.pb.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Bench {

namespace {

class GrpcService : public qnl::Indicator::Service {
public:
    grpc::Status TurnOffIndicator(
        grpc::ServerContext* /* context */, const qnl::Call* /* call */, qnl::Result* /* result */) override
    {
        return grpc::Status::OK;
    }

    grpc::Status GetPrivacyEventDetails(
        grpc::ServerContext* /* context */, const qnl::Query* query, qnl::Details* details) override
    {
        for (int32_t i = 0; i < query->user(); ++i) {
            const Detail& from = AllDetails()[static_cast<size_t>(i)];
            qnl::Detail& to = *details->add_details();
            to.set_bundle_name(from.bundleName);
            to.set_uid(from.uid);
            to.set_sensor(from.sensor);
            to.set_begin(from.begin);
            to.set_real_end(from.realEnd);
            to.set_shown_end(from.shownEnd);
            to.set_real_state(from.realState);
            to.set_shown_state(from.shownState);
            to.set_flags(from.flags);
        }
        return grpc::Status::OK;
    }
};

class Grpc : public Contender {
public:
    Grpc() : Contender("gRPC"), address_("unix-abstract:" + Address("grpc")) {}

    void Serve(const std::function<void()>& ready) override
    {
        GrpcService service;
        grpc::ServerBuilder builder;
        builder.AddListeningPort(address_, grpc::InsecureServerCredentials());
        builder.RegisterService(&service);
        const auto server = builder.BuildAndStart();
        if (server == nullptr) {
            Fail("gRPC: no server");
        }
        ready();
        server->Wait();
    }

    void Call() override
    {
        grpc::ClientContext context;
        qnl::Call call;
        qnl::Result result;
        call.set_sensor(0);
        call.set_animation(1);
        if (!Stub().TurnOffIndicator(&context, call, &result).ok() || result.result() != 0) {
            Fail("gRPC: wrong answer");
        }
    }

    void Query(int32_t records) override
    {
        grpc::ClientContext context;
        qnl::Query query;
        qnl::Details details;
        query.set_user(records);
        if (!Stub().GetPrivacyEventDetails(&context, query, &details).ok() || details.details_size() != records) {
            Fail("gRPC: wrong answer");
        }
    }

private:
    qnl::Indicator::Stub& Stub()
    {
        static const auto stub =
            qnl::Indicator::NewStub(grpc::CreateChannel(address_, grpc::InsecureChannelCredentials()));
        return *stub;
    }

    const std::string address_;
};

} // namespace

std::unique_ptr<Contender> MakeGrpc() { return std::make_unique<Grpc>(); }

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Bench
