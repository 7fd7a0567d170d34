#!/bin/sh
# Stands in a wheel, which holds no links, for the link to the system's git that other installations have. A bundle of
# certificates is left out there: git takes the system's by itself.
exec git "$@"
