#pragma once

/// Member names of the metadata files, each in one place.
namespace HSCPlazKey {

// Top level.
inline constexpr char plaz[] = "plaz";
inline constexpr char catalog[] = "catalog";
inline constexpr char config[] = "config"; ///< also inside stores, catalog entries and the configuration
inline constexpr char majorVersion[] = "_major";
inline constexpr char minorVersion[] = "_minor";

// Stores and items alike.
inline constexpr char qstores[] = "qstores";
inline constexpr char items[] = "items";
inline constexpr char name[] = "name";
inline constexpr char displayName[] = "display_name";
inline constexpr char description[] = "description";
inline constexpr char root[] = "root";
inline constexpr char metadataFile[] = "metadata_file";
inline constexpr char company[] = "company";
inline constexpr char revision[] = "revision";
inline constexpr char commitId[] = "commit_id";
inline constexpr char categories[] = "categories";

// Hub metadata file.
inline constexpr char hubCommitId[] = "commit-id";
inline constexpr char url[] = "url"; ///< also in the configuration file
inline constexpr char isPrivate[] = "is_private";
inline constexpr char itemRoot[] = "item_root";
inline constexpr char scriptRoot[] = "script_root";
inline constexpr char storeType[] = "store_type";
inline constexpr char installLocation[] = "install_loc";

// Configuration file.
inline constexpr char remoteRepository[] = "remote_repository";
inline constexpr char gdaDataRoot[] = "gda_data_root";
inline constexpr char appDataRoot[] = "app_data_root";
inline constexpr char schemaVersion[] = "schema_version";
inline constexpr char storesRoot[] = "stores_root";
inline constexpr char toolchain[] = "toolchain";
inline constexpr char tool[] = "tool";
inline constexpr char version[] = "version"; ///< of a tool, and of a product in the store metadata file
inline constexpr char authentication[] = "authentication";
inline constexpr char mode[] = "mode";
inline constexpr char certificate[] = "certificate";
inline constexpr char userId[] = "user_id";
inline constexpr char userToken[] = "user_token";

// Store metadata file.
inline constexpr char supportedProducts[] = "supported_products";
inline constexpr char productName[] = "product_name";
inline constexpr char supportedReleases[] = "supported_releases";
inline constexpr char itemCatalogFile[] = "qitem_catalogue_file";
inline constexpr char branchToSync[] = "remote_repo_branch_to_sync";
inline constexpr char catalogRevision[] = "catalog_revision";
inline constexpr char remote[] = "remote";
inline constexpr char release[] = "release"; ///< also in the local database
inline constexpr char currentBranch[] = "current_branch";

// Item catalog file.
inline constexpr char multiRevisionSupported[] = "multi_revision_supported";
inline constexpr char latestRevision[] = "latest_revision";
inline constexpr char revisions[] = "revisions";
inline constexpr char history[] = "history";
inline constexpr char parent[] = "parent";

// Item metadata file.
inline constexpr char infra[] = "infra";
inline constexpr char display[] = "display";
inline constexpr char companyDisplay[] = "company_display";
inline constexpr char author[] = "author";
inline constexpr char category[] = "category";
inline constexpr char logo[] = "logo";
inline constexpr char website[] = "website";
inline constexpr char dependencies[] = "dependencies";
inline constexpr char searchKeywords[] = "search-keywords";
inline constexpr char isActive[] = "is_active";
inline constexpr char dependencyItem[] = "item";
inline constexpr char dependencyStore[] = "store";

// Local installation database.
inline constexpr char product[] = "product";
inline constexpr char catalogFile[] = "catalog_file";
inline constexpr char branch[] = "branch";
inline constexpr char userRepository[] = "user_repository";
inline constexpr char localDirectory[] = "local_directory";
inline constexpr char installationMode[] = "installation_mode";
inline constexpr char referenceCount[] = "reference_count";
inline constexpr char isLatest[] = "is_latest";

} // namespace HSCPlazKey
