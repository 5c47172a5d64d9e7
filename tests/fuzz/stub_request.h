// SPDX-License-Identifier: Apache-2.0
#ifndef STUB_REQUEST_H
#define STUB_REQUEST_H

#include "failing.h"
#include "input.h"
#include "ipc_object_stub.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Test {

/** A request to a stub, which may end with an object, and what should be made of its token. */
class StubRequest {
public:
    StubRequest(const Bytes& bytes, const Bytes& token, const sptr<IRemoteObject>& object = nullptr)
        : reader(bytes), parcel_(bytes)
    {
        if (object != nullptr) {
            reader.objects = {bytes.size()};
            reader.bytes += Bytes(24, '\0');
            Require(parcel_.WriteRemoteObject(object), "a request can carry an object");
        }
        isForStub = reader.Read("iiu") && reader.Take().substr(8) == token.substr(8);
    }

    /** Has the stub serve it, without memory for the nth new object if that is not 0. */
    int32_t Send(IPCObjectStub& stub, uint32_t code, MessageParcel& reply, int failingNew)
    {
        MessageOption option;
        Failing::nthNew = failingNew;
        const int32_t result = stub.OnRemoteRequest(code, parcel_, reply, option);
        Failing::nthNew = 0;
        Failing::write.reset();
        Require(GetReadPosition() <= parcel_.GetDataSize(), "the cursor stays within the request");
        return result;
    }

    size_t GetReadPosition() const { return parcel_.GetReadPosition(); }

    Reader reader; // At first after the token.
    bool isForStub = false;

private:
    RawParcel parcel_;
};

/** How a listener's stub is tried: mostly with the right token and code. */
struct ListenerTrial {
    ListenerTrial(Input input, const Bytes& token)
        : how(input.Byte()), code(input.OneIn(8) ? input.Number<uint32_t>() : 0),
          failingNew(input.OneIn(16) ? 1 + input.Byte() % 4 : 0),
          request((how % 2 == 0 ? token : "") + input.Rest(), token), isForStub(request.isForStub && code == 0)
    {}

    /** Has a stub of this class, whose function calls `hear` if there is one, serve the request. */
    template <typename Stub, typename Hear>
    void Expect(int32_t result, const Hear& hear)
    {
        Stub stub(hasFunction ? typename Stub::Callback(hear) : nullptr);
        MessageParcel reply;
        Require(request.Send(stub, code, reply, failingNew) == result, "the stub answers as documented");
        Require(reply.GetDataSize() == 0, "the reply is left empty");
    }

    const uint8_t how;
    const uint32_t code;
    const int failingNew;
    StubRequest request;
    const bool isForStub; // With its code, too.
    const bool hasFunction = how < 0xF0;
};

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Test

#endif // STUB_REQUEST_H
