// Filled by the service.
