#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# licence_test.sh REPOSITORY: every source file names its licence in its first lines.
set -euo pipefail
cd "$1"
bare=$(find .ci CMakeLists.txt android bench cmake examples fuzz include liblog python scripts src \
    tests tools web -type f -not -path '*/.*/*.swp' -not -path '*/node_modules/*' \
    -regextype egrep -regex '.*\.(c|cpp|h|java|kt|py|sh|bash|cmake|pov|inc|gp|js|mjs|ts|css|html|svg)|.*/CMakeLists\.txt|CMakeLists\.txt|.ci/run' \
    -exec sh -c 'head -n 3 "$1" | grep -q "SPDX-License-Identifier: Apache-2.0" || echo "$1"' - {} \;)
[ -z "$bare" ] || { echo "without a licence:"; echo "$bare"; exit 1; }
