#!/bin/sh
# A payload in shell: handles one command. Run it by
#   tavo agent --server HOST:PORT --id P1 -- examples/agent/handler.sh
# What it writes is the answer; an exit code other than 0 says that the command failed.
set -eu

# Only the commands named here exist: nothing that comes over the wire is ever run.
case $TAVO_COMMAND in
status)
    echo "up since $(uptime -s)"
    ;;
"depth "[0-9]*)
    echo "diving to ${TAVO_COMMAND#depth } m"
    ;;
*)
    if [ "$TAVO_KIND" = file ]; then
        echo "the file has $(wc -c <"$TAVO_COMMAND") bytes"
    else
        echo "unknown command '$TAVO_COMMAND'"
        exit 1
    fi
    ;;
esac
