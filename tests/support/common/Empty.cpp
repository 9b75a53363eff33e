// Keeps the support libraries non-empty while a folder has no sources yet.
