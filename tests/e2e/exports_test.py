#!/usr/bin/env python3
"""Catches: a class of the hub's own that became visible, one that embedding tools need and that vanished, or templates
of other libraries among the exports."""
import re
import subprocess
import sys

EXPORTED = {
    "HSCPlaz", "HSCPlazBaseModel", "HSCPlazCategory", "HSCPlazConfigMgr", "HSCPlazFileCheck", "HSCPlazGit",
    "HSCPlazInspection", "HSCPlazItemResult", "HSCPlazJsonReadWriteUtils", "HSCPlazLocalDBMgr", "HSCPlazLogger",
    "HSCPlazMgr", "HSCPlazModel", "HSCPlazPathMgr", "HSCPlazPathsInForce", "HSCPlazProduct", "HSCPlazQItem",
    "HSCPlazQItemModel", "HSCPlazQStore", "HSCPlazQStoreModel", "HSCPlazRepoFactory", "HSCPlazRepoInfoMgr",
    "HSCPlazReport", "HSCPlazStoreLayout", "HSCPlazStoreResult", "HSCPlazSwigIntf", "HSCPlazTaskMgr", "HSCPlazTrust",
    "HSCPlazUpdateDecision", "HSCPlazUserPref", "HSCPlazUtils",
    "hdi::pyinfra::py_native_cache", "hdi::tcltasks::native_cache", "operator<<", "plaz_startup"}

lines = subprocess.run(["nm", "-DC", "--defined-only", sys.argv[1]], check=True, capture_output=True,
                       text=True).stdout.splitlines()
names = {re.match(r"(?:(?:vtable|typeinfo(?: name)?) for )?(hdi::\w+::\w+|operator<<|\w+)",
                  line.split(maxsplit=2)[2]).group(1) for line in lines}
if names != EXPORTED:
    sys.exit(f"unwanted: {sorted(names - EXPORTED)}\nmissing: {sorted(EXPORTED - names)}")
