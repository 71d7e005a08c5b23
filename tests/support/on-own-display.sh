#!/usr/bin/env bash
# Runs a test on a virtual display of its own: windows of other tests that lie over its windows, or take their
# focus, would change what it sees.
set -u
. "$(dirname "${BASH_SOURCE[0]}")/../../packaging/setup.sh"
xelt_start_display 2048x1536x24 || exit 1
"$@"
