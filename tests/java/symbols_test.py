"""Catches: a function of the Java binding that is missing, misnamed, or exported besides the family.

    symbols_test.py LIBPLAZI [OBJDUMP]

With OBJDUMP the library is one for Windows.
"""

import re
import subprocess
import sys

FACADE = """canAccessRepo getHttpProxy getItems getLastRefreshTime getStore getStores getQStoresPath hasUpdate install
    isInstalled isRefreshed refreshCatalog setHttpProxy setQStoreLocalRootDir setQStoresPath uninstall update"""
STORE = """getBranch getCategories getDescription getDisplayName getItemRootDir getItems getLocalRootDir getMetadataFile
    getName getRoot getStoreType getSupportUrl getUrl isUserRepository setBranch setDescription setDisplayName setUrl"""
ITEM = """IsInstalled NeedsRefresh getAuthor getCategories getCommitId getCompany getCompanyDisplayName getDescription
    getDisplayName getHistory getItemDependencies getItemSearchKeywords getLocalRootDir getLogo getMetadataFile getName
    getRevision getRoot getSource getStoreName getUrl getWebsite"""
STATUS = """new_TaskStatus delete_TaskStatus canCancel cancel changeAbbrevStatus changePercentComplete changeStatus
    getAbbrevStatusMessage getPercentComplete getState getStatusMessage isCanceled isDeterminate
    setDeterminate setState"""
EXCEPTION = """new_PlazException() new_PlazException(Ljava/lang/String;II) delete_PlazException""" + "".join(
    f" {access}_PlazException_error_{field}" for access in ("get", "set") for field in ("msg", "code", "context")
)

FAMILY = {
    "PlazSwigIntf": FACADE,
    "PlazStore": STORE,
    "PlazItem": ITEM,
    "TaskStatus": STATUS,
    "PlazException": EXCEPTION,
    "PlazItemDependency": "getCompany getItem getRevision getStore isOptional",
    "PlazCategory": "getDescription getDisplayName getName getSubCategories",
}
for vector in "StringVector PlazQStoreVec PlazItemVec PlazItemDependencyVec PlazCategoryVec".split():
    iterator = re.sub("Vec$", "", vector) + "Iter"
    FAMILY[vector] = f"new_{vector} delete_{vector} clear createIter push_back size"
    FAMILY[iterator] = f"delete_{iterator} hasNext next"


def symbol(owner, method):
    name, overload, signature = method.partition("(")
    suffix = "__" + signature.rstrip(")").replace(";", "_2").replace("/", "_") if overload else ""
    return "Java_ui_frmwork_plaz_plazi_" + f"{owner}_{name}".replace("_", "_1") + suffix


def main():
    family = {symbol(owner, method) for owner, methods in FAMILY.items() for method in methods.split()}
    library, *objdump = sys.argv[1:]
    lister, entry = (
        (["nm", "--dynamic", "--defined-only"], r" [A-Za-z] (\S+)")
        if not objdump
        else ([*objdump, "--private-headers"], r"\n\t\[ *\d+\] (?!\+base)(\S+)")
    )
    listed = subprocess.run([*lister, library], check=True, stdout=subprocess.PIPE, encoding="utf-8").stdout
    exported = set(re.findall(entry, listed))
    for name in sorted(family ^ exported):
        print(name, "is missing" if name in family else "does not belong to the family")
    sys.exit(0 if exported == family else 1)


main()
