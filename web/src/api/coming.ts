// Questions and paths that the description of the server does not have yet. It goes when they are there.
import { ask } from './workbench.js';
import { door } from './door.js';

export interface LogLine {
  FKey: number; FTime: string | null; FKind: string; FName: string; FOrder: number; FOrderID: string; FEntryID: number;
  FUserID: number; FUserName: string; FAddress: string; FOldValue: string; FNewValue: string;
}
export interface Work {
  FStep: string; FFrom: string; FTo: string; FPersonID: string; FPersonName: string; FOrders: number;
}

interface Coming {
  log: LogLine;
  work: Work;
  switches: { FCategory: string; FKey: string; FValue: string; FDescription: string };
  backlog: { FState: number; FAge: number; FFrom: string | null; FTo: string | null; FOrders: number };
  carriers: { FCarrierID: number; FCarrier: string; FOrders: number; FWeight: number | string; FCost: number | string };
  failures: { FReason: string; FOrders: number };
}

export const askComing = ask as unknown as <Name extends keyof Coming>(
  name: Name, asked: Record<string, unknown>, signal?: AbortSignal,
) => Promise<Coming[Name][]>;

type Call = (path: string, init?: unknown) => Promise<{ data?: unknown; error?: unknown; response: Response }>;
export const doorComing = door as unknown as Record<'GET' | 'POST' | 'PATCH' | 'DELETE', Call>;
