// SPDX-License-Identifier: Apache-2.0
// An app from its start to its first answer, at which it writes a byte; it ends with its input. With any argument it is
// only loaded.
#include <unistd.h>

#include <vector>

#include "privacy_indicator_client.h"

using namespace OHOS::Korvane::Quenlar::PrivacyIndicator;

int main(int argc, char** /* argv */)
{
    if (argc > 1) {
        return 0;
    }
    std::vector<Privacy::PrivacyEventDetail> details;
    PrivacyIndicatorClient::GetInstance().GetPrivacyEventDetails(1, details); // As many, if there is a service.
    char byte = 0;
    return details.size() == 1 && write(STDOUT_FILENO, &byte, 1) == 1 && read(STDIN_FILENO, &byte, 1) == 0 ? 0 : 1;
}
