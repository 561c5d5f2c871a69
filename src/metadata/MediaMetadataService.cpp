// Filled with the service.
