// SPDX-License-Identifier: Apache-2.0
// An app from its start to its first answer, at which it writes a byte; with any argument, it is only loaded.
#include <unistd.h>

#include "privacy_indicator_client.h"

using namespace OHOS::Korvane::Quenlar::PrivacyIndicator;

int main(int argc, char** /* argv */)
{
    if (argc > 1) {
        return 0;
    }
    const int32_t result = PrivacyIndicatorClient::GetInstance().TurnOffIndicator(PrivacySensorType::CAMERA, 1);
    const char byte = result == 0 ? 'y' : 'n';
    return write(STDOUT_FILENO, &byte, 1) == 1 ? 0 : 1;
}
