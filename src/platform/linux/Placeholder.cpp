// Filled by the folder's first class.
