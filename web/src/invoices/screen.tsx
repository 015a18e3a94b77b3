export function InvoicesScreen() { return null; }
